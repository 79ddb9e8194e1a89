// An IStream that answers reads as a test has planned them.
#pragma once

#include <algorithm>
#include <deque>
#include <string>
#include <utility>

#include <objidl.h>

#include "tests/support/fake_object.h"

namespace test_support {

class FakeStream final : public FakeObject<IStream> {
  public:
    explicit FakeStream(std::string name = "stream") : FakeObject(std::move(name)) {}

    struct Answer {
        ULONG bytes;
        HRESULT result;
    };

    /// One answer a read; a read beyond them fails with E_UNEXPECTED.
    std::deque<Answer> answers;

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG size, ULONG* read) override {
        Record("Read " + std::to_string(size));
        if (answers.empty()) {
            return E_UNEXPECTED;
        }
        const Answer answer = answers.front();
        answers.pop_front();
        *read = std::min(answer.bytes, size);
        std::fill_n(static_cast<char*>(buffer), *read, 'x');
        return answer.result;
    }

    HRESULT STDMETHODCALLTYPE Write(const void* /*data*/, ULONG /*size*/, ULONG* /*written*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER /*move*/, DWORD /*origin*/,
                                   ULARGE_INTEGER* /*position*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER /*size*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream* /*target*/, ULARGE_INTEGER /*size*/, ULARGE_INTEGER* /*read*/,
                                     ULARGE_INTEGER* /*written*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD /*flags*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER /*offset*/, ULARGE_INTEGER /*size*/,
                                         DWORD /*type*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER /*offset*/, ULARGE_INTEGER /*size*/,
                                           DWORD /*type*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* /*statistics*/, DWORD /*flags*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream** /*copy*/) override { return E_NOTIMPL; }
};

} // namespace test_support
