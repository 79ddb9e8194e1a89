// Packing and unpacking an authentication buffer, with buffers of every size and of every kind of damage.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>
#include <wincred.h>

#include "freed_by_library.h"
#include "testbed/windows_gaps/windows_gaps.h"

namespace windows_gaps_test {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Pack(std::wstring userName, std::wstring password) {
    DWORD size = 0;
    EXPECT_FALSE(CredPackAuthenticationBufferW(0, userName.data(), password.data(), nullptr, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    Bytes packed(size);
    EXPECT_TRUE(CredPackAuthenticationBufferW(0, userName.data(), password.data(), packed.data(), &size));
    EXPECT_EQ(size, packed.size());
    return packed;
}

/// The buffers of a caller, as large as the platform's longest texts.
struct Unpacked {
    std::array<wchar_t, CREDUI_MAX_USERNAME_LENGTH + 1> userName{};
    std::array<wchar_t, CREDUI_MAX_DOMAIN_TARGET_LENGTH + 1> domain{};
    std::array<wchar_t, CREDUI_MAX_PASSWORD_LENGTH + 1> password{};
    DWORD userNameSize = CREDUI_MAX_USERNAME_LENGTH + 1;
    DWORD domainSize = CREDUI_MAX_DOMAIN_TARGET_LENGTH + 1;
    DWORD passwordSize = CREDUI_MAX_PASSWORD_LENGTH + 1;

    /// @return 0 or the error.
    DWORD Unpack(Bytes& packed, std::size_t size) {
        SetLastError(0);
        return CredUnPackAuthenticationBufferW(0, packed.data(), static_cast<DWORD>(size), userName.data(),
                                               &userNameSize, domain.data(), &domainSize, password.data(),
                                               &passwordSize) != FALSE
                   ? 0
                   : GetLastError();
    }
};

class CredentialBuffer : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(SupplyWindowsGaps(GetModuleHandleW(nullptr))); }
};

TEST_F(CredentialBuffer, GivesBackWhatWasPacked) {
    const std::array<std::array<std::wstring, 2>, 5> pairs = {{
        {L"ann", L"secret"},
        {L"DOMAIN\\j\u00f6rg", L"p:@ss w\u00f6rd \u20ac\U0001D11E"},
        {L"ann", L""},
        {L"", L""},
        {std::wstring(CREDUI_MAX_USERNAME_LENGTH, L'u'), std::wstring(CREDUI_MAX_PASSWORD_LENGTH, L'p')},
    }};
    for (const auto& [userName, password] : pairs) {
        Bytes packed = Pack(userName, password);
        Unpacked unpacked;
        ASSERT_EQ(unpacked.Unpack(packed, packed.size()), 0U);
        EXPECT_EQ(unpacked.userName.data(), userName);
        EXPECT_EQ(unpacked.password.data(), password);
        EXPECT_STREQ(unpacked.domain.data(), L"");
        EXPECT_EQ(unpacked.userNameSize, userName.size() + 1);
        EXPECT_EQ(unpacked.passwordSize, password.size() + 1);
        EXPECT_EQ(unpacked.domainSize, 1U);
    }
}

TEST_F(CredentialBuffer, TellsTheSizesThatItNeeds) {
    Bytes packed = Pack(L"ann", L"secret");
    DWORD userName = 0;
    DWORD domain = 0;
    DWORD password = 0;

    EXPECT_FALSE(CredUnPackAuthenticationBufferW(0, packed.data(), static_cast<DWORD>(packed.size()), nullptr,
                                                 &userName, nullptr, &domain, nullptr, &password));

    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(userName, 4U);
    EXPECT_EQ(domain, 1U);
    EXPECT_EQ(password, 7U);
}

TEST_F(CredentialBuffer, WritesNothingThatDoesNotFit) {
    Bytes packed = Pack(L"ann", L"secret");
    const auto unpackWith = [&](DWORD userNameSize, DWORD domainSize, DWORD passwordSize) {
        Unpacked unpacked;
        unpacked.userNameSize = userNameSize;
        unpacked.domainSize = domainSize;
        unpacked.passwordSize = passwordSize;
        const DWORD error = unpacked.Unpack(packed, packed.size());
        const bool written = unpacked.userName[0] != 0 || unpacked.password[0] != 0;
        EXPECT_EQ(written, error == 0);
        EXPECT_EQ(unpacked.userNameSize, 4U);
        EXPECT_EQ(unpacked.domainSize, 1U);
        EXPECT_EQ(unpacked.passwordSize, 7U);
        return error;
    };
    constexpr DWORD kTooSmall = ERROR_INSUFFICIENT_BUFFER;
    EXPECT_EQ(unpackWith(4, 1, 7), 0U);
    EXPECT_EQ(unpackWith(3, 1, 7), kTooSmall);
    EXPECT_EQ(unpackWith(4, 1, 6), kTooSmall);
    EXPECT_EQ(unpackWith(4, 0, 7), kTooSmall);
    EXPECT_EQ(unpackWith(0, 0, 0), kTooSmall);
}

TEST_F(CredentialBuffer, NeedNotTellADomain) {
    Bytes packed = Pack(L"ann", L"secret");
    Unpacked unpacked;
    EXPECT_TRUE(CredUnPackAuthenticationBufferW(0, packed.data(), static_cast<DWORD>(packed.size()),
                                                unpacked.userName.data(), &unpacked.userNameSize, nullptr,
                                                nullptr, unpacked.password.data(), &unpacked.passwordSize));
    EXPECT_STREQ(unpacked.password.data(), L"secret");
}

TEST_F(CredentialBuffer, PacksNothingIntoTooSmallABuffer) {
    std::wstring userName = L"ann";
    std::wstring password = L"secret";
    const DWORD needed = static_cast<DWORD>(Pack(userName, password).size());
    Bytes small(needed - 1, 0xAA);
    DWORD size = needed - 1;

    EXPECT_FALSE(CredPackAuthenticationBufferW(0, userName.data(), password.data(), small.data(), &size));

    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(size, needed);
    EXPECT_EQ(small, Bytes(needed - 1, 0xAA));
}

TEST_F(CredentialBuffer, RefusesMissingTexts) {
    std::wstring text = L"ann";
    DWORD size = 0;
    const auto refused = [](BOOL result) {
        return result == FALSE && GetLastError() == ERROR_INVALID_PARAMETER;
    };
    EXPECT_TRUE(refused(CredPackAuthenticationBufferW(0, nullptr, text.data(), nullptr, &size)));
    EXPECT_TRUE(refused(CredPackAuthenticationBufferW(0, text.data(), nullptr, nullptr, &size)));
    EXPECT_TRUE(refused(CredPackAuthenticationBufferW(0, text.data(), text.data(), nullptr, nullptr)));
}

TEST_F(CredentialBuffer, IsRefusedWhenCutOffAnywhere) {
    const Bytes packed = Pack(L"ann", L"secret");
    for (std::size_t size = 0; size < packed.size(); ++size) {
        // A buffer of just that size, so that a read beyond it is beyond the block.
        Bytes cut(packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(Unpacked().Unpack(cut, cut.size()), static_cast<DWORD>(ERROR_NOT_SUPPORTED)) << size;
    }
}

TEST_F(CredentialBuffer, IsRefusedWhenSomethingFollows) {
    Bytes packed = Pack(L"ann", L"secret");
    packed.push_back(0);
    EXPECT_EQ(Unpacked().Unpack(packed, packed.size()), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
}

TEST_F(CredentialBuffer, IsRefusedOrHarmlessWithAnyByteChanged) {
    const Bytes packed = Pack(L"ann", L"secret");
    const std::size_t textSize = 9 * sizeof(wchar_t);
    for (std::size_t index = 0; index < packed.size(); ++index) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            Bytes changed = packed;
            changed[index] = static_cast<std::uint8_t>(changed[index] ^ (1U << bit));
            Unpacked unpacked;
            const DWORD error = unpacked.Unpack(changed, changed.size());
            if (index < packed.size() - textSize) {
                EXPECT_EQ(error, static_cast<DWORD>(ERROR_NOT_SUPPORTED)) << index;
            } else {
                EXPECT_EQ(error, 0U) << index;
                EXPECT_EQ(unpacked.userNameSize, 4U);
                EXPECT_EQ(unpacked.passwordSize, 7U);
            }
        }
    }
}

TEST_F(CredentialBuffer, IsRefusedWhenATextHoldsATerminator) {
    Bytes packed = Pack(L"ann", L"secret");
    packed[packed.size() - 2] = packed[packed.size() - 1] = 0;
    EXPECT_EQ(Unpacked().Unpack(packed, packed.size()), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
}

TEST_F(CredentialBuffer, IsRefusedWhenItsLengthsOverflow) {
    const Bytes packed = Pack(L"ann", L"secret");
    const std::size_t lengths = packed.size() - 9 * sizeof(wchar_t) - 2 * sizeof(std::uint32_t);
    for (std::size_t index = lengths; index < lengths + 2 * sizeof(std::uint32_t); ++index) {
        Bytes changed = packed;
        changed[index] = 0xFF;
        EXPECT_EQ(Unpacked().Unpack(changed, changed.size()), static_cast<DWORD>(ERROR_NOT_SUPPORTED))
            << index;
    }
    Bytes changed = packed;
    std::fill_n(changed.begin() + static_cast<std::ptrdiff_t>(lengths), 2 * sizeof(std::uint32_t),
                std::uint8_t{0xFF});
    EXPECT_EQ(Unpacked().Unpack(changed, changed.size()), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
}

TEST_F(CredentialBuffer, IsRefusedWhenItIsNone) {
    Bytes nothing;
    EXPECT_EQ(Unpacked().Unpack(nothing, 0), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
    Unpacked unpacked;
    EXPECT_FALSE(CredUnPackAuthenticationBufferW(0, nullptr, 100, unpacked.userName.data(),
                                                 &unpacked.userNameSize, nullptr, nullptr,
                                                 unpacked.password.data(), &unpacked.passwordSize));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
    Bytes zeros(100);
    EXPECT_EQ(Unpacked().Unpack(zeros, zeros.size()), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
}

TEST_F(CredentialBuffer, IsTheSameUnderTheLibrarysOwnNames) {
    std::wstring userName = L"ann";
    std::wstring password = L"secret";
    Bytes packed = Pack(userName, password);
    Bytes own(packed.size());
    auto size = static_cast<DWORD>(own.size());
    EXPECT_TRUE(WindowsGapsPackCredentials(0, userName.data(), password.data(), own.data(), &size));
    EXPECT_EQ(own, packed);

    Unpacked unpacked;
    EXPECT_TRUE(WindowsGapsUnpackCredentials(0, own.data(), size, unpacked.userName.data(),
                                             &unpacked.userNameSize, nullptr, nullptr,
                                             unpacked.password.data(), &unpacked.passwordSize));
    EXPECT_STREQ(unpacked.userName.data(), L"ann");
    EXPECT_STREQ(unpacked.password.data(), L"secret");
}

TEST_F(CredentialBuffer, LeavesNothingBehindThatItHeldMeanwhile) {
    const test_support::HiddenText secret(24, 1);
    std::array<wchar_t, 25> password{};
    secret.PutInto(password.data());
    std::wstring userName = L"ann";
    Bytes packed(200);
    auto size = static_cast<DWORD>(packed.size());
    Unpacked unpacked;
    const FreedByLibrary freed(secret);

    ASSERT_TRUE(CredPackAuthenticationBufferW(0, userName.data(), password.data(), packed.data(), &size));
    ASSERT_EQ(unpacked.Unpack(packed, size), 0U);

    EXPECT_TRUE(secret.Equals(unpacked.password.data()));
    EXPECT_EQ(FreedByLibrary::Found(), 0U);
}

} // namespace
} // namespace windows_gaps_test
