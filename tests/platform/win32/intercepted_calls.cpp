#include "platform/win32/intercepted_calls.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string_view>

namespace coffrelune {
namespace {

/// Calls `act` with each place of the program's own table that leads to a function of this name.
template <typename Act>
int eachImport(std::string_view name, Act act) {
    auto* const base = reinterpret_cast<std::byte*>(GetModuleHandleW(nullptr));
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    int found = 0;
    for (const auto* module =
             reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + table.VirtualAddress);
         module->Name != 0; ++module) {
        const auto* names =
            reinterpret_cast<const IMAGE_THUNK_DATA*>(base + module->OriginalFirstThunk);
        auto* places = reinterpret_cast<IMAGE_THUNK_DATA*>(base + module->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++places) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* import =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            if (name != reinterpret_cast<const char*>(import->Name)) continue;
            act(places->u1.Function);
            ++found;
        }
    }
    return found;
}

void write(ULONGLONG& place, ULONGLONG value) {
    DWORD before = 0;
    VirtualProtect(&place, sizeof place, PAGE_READWRITE, &before);
    place = value;
    VirtualProtect(&place, sizeof place, before, &before);
}

/// Leads the calls of a function to another. Gives what it was.
template <typename Function>
Function lead(std::string_view name, Function to) {
    Function before = nullptr;
    const int found = eachImport(name, [&](ULONGLONG& place) {
        std::memcpy(&before, &place, sizeof before);
        write(place, reinterpret_cast<ULONGLONG>(to));
    });
    // One that the program no longer calls would not be missed otherwise.
    EXPECT_EQ(found, 1) << name;
    return before;
}

// What a call that is led elsewhere can reach: nothing but this.
int counted = 0;
std::wstring refusedPart;
std::uint32_t failure = 0;
decltype(&CreateFileW) createFile = nullptr;
decltype(&FindFirstFileExW) findFirst = nullptr;
decltype(&FindNextFileW) findNext = nullptr;
decltype(&GetFileAttributesW) getAttributes = nullptr;
decltype(&GetFileAttributesExW) getAttributesEx = nullptr;

/// A function that counts its calls and passes them on to `real`.
template <auto& real>
struct Counting;

template <typename Result, typename... Arguments, Result(WINAPI*& real)(Arguments...)>
struct Counting<real> {
    static Result WINAPI call(Arguments... arguments) {
        ++counted;
        return real(arguments...);
    }
};

HANDLE WINAPI refuse(LPCWSTR path, FINDEX_INFO_LEVELS level, LPVOID found, FINDEX_SEARCH_OPS search,
                     LPVOID filter, DWORD flags) {
    if (std::wstring_view(path).find(refusedPart) == std::wstring_view::npos) {
        return findFirst(path, level, found, search, filter, flags);
    }
    SetLastError(failure);
    return INVALID_HANDLE_VALUE;
}

BOOL WINAPI breakOff(HANDLE, LPWIN32_FIND_DATAW) {
    SetLastError(failure);
    return FALSE;
}

}  // namespace

CallCount::CallCount() {
    createFile = lead("CreateFileW", &Counting<createFile>::call);
    findFirst = lead("FindFirstFileExW", &Counting<findFirst>::call);
    getAttributes = lead("GetFileAttributesW", &Counting<getAttributes>::call);
    getAttributesEx = lead("GetFileAttributesExW", &Counting<getAttributesEx>::call);
    counted = 0;
}

CallCount::~CallCount() {
    (void)lead("CreateFileW", createFile);
    (void)lead("FindFirstFileExW", findFirst);
    (void)lead("GetFileAttributesW", getAttributes);
    (void)lead("GetFileAttributesExW", getAttributesEx);
}

int CallCount::calls() const {
    return counted;
}

RefusedListings::RefusedListings(const std::wstring& part, std::uint32_t error) {
    refusedPart = part;
    failure = error;
    findFirst = lead("FindFirstFileExW", &refuse);
}

RefusedListings::~RefusedListings() {
    (void)lead("FindFirstFileExW", findFirst);
}

BrokenListings::BrokenListings(std::uint32_t error) {
    failure = error;
    findNext = lead("FindNextFileW", &breakOff);
}

BrokenListings::~BrokenListings() {
    (void)lead("FindNextFileW", findNext);
}

}  // namespace coffrelune
