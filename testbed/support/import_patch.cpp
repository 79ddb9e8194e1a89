// Walks the import descriptors of a loaded PE image and swaps slots of its import address table.
#include "testbed/support/import_patch.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace testbed {
namespace {

/// A loaded image, addressed by offsets from its start.
class Image {
  public:
    explicit Image(HMODULE module) : start_(reinterpret_cast<std::byte*>(module)) {}

    template <typename T>
    T* At(std::size_t offset) const {
        return reinterpret_cast<T*>(start_ + offset);
    }

    /// @return the first import descriptor, or null if the image imports nothing.
    const IMAGE_IMPORT_DESCRIPTOR* Imports() const {
        const auto* dos = At<IMAGE_DOS_HEADER>(0);
        const auto* nt = At<IMAGE_NT_HEADERS>(static_cast<std::size_t>(dos->e_lfanew));
        if (nt->OptionalHeader.NumberOfRvaAndSizes <= IMAGE_DIRECTORY_ENTRY_IMPORT) {
            return nullptr;
        }
        const auto& directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
        return directory.VirtualAddress == 0 ? nullptr
                                             : At<IMAGE_IMPORT_DESCRIPTOR>(directory.VirtualAddress);
    }

  private:
    std::byte* start_;
};

/// @return the slot that holds the function's address, or null.
void** FindSlot(const Image& image, const IMAGE_IMPORT_DESCRIPTOR& descriptor, const char* function) {
    if (descriptor.OriginalFirstThunk == 0) {
        return nullptr; // the names were overwritten by the addresses
    }
    const auto* name = image.At<IMAGE_THUNK_DATA>(descriptor.OriginalFirstThunk);
    auto* slot = image.At<IMAGE_THUNK_DATA>(descriptor.FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++slot) {
        if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
            continue;
        }
        const auto* byName = image.At<IMAGE_IMPORT_BY_NAME>(static_cast<std::size_t>(name->u1.AddressOfData));
        if (std::strcmp(reinterpret_cast<const char*>(byName->Name), function) == 0) {
            return reinterpret_cast<void**>(&slot->u1.Function);
        }
    }
    return nullptr;
}

/// @return the former content of the slot, or null if it cannot be written.
void* Swap(void** slot, void* value) {
    DWORD protection = 0;
    if (VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection) == 0) {
        return nullptr;
    }
    void* former = InterlockedExchangePointer(slot, value);
    VirtualProtect(slot, sizeof(*slot), protection, &protection);
    return former;
}

} // namespace

void* PatchImport(HMODULE module, const char* library, const char* function, void* replacement) {
    if (module == nullptr) {
        return nullptr;
    }
    const Image image(module);
    const auto* descriptor = image.Imports();
    for (; descriptor != nullptr && descriptor->Name != 0; ++descriptor) {
        if (_stricmp(image.At<char>(descriptor->Name), library) != 0) {
            continue;
        }
        if (void** slot = FindSlot(image, *descriptor, function)) {
            return Swap(slot, replacement);
        }
    }
    return nullptr;
}

} // namespace testbed
