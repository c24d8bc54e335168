#include "platform/win32/call_count.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string_view>

namespace coffrelune {
namespace {

int counted = 0;

/// One function of the system that the program calls through its table of imports.
template <typename Function>
struct Counted;

template <typename Result, typename... Arguments>
struct Counted<Result(WINAPI*)(Arguments...)> {
    using Function = Result(WINAPI*)(Arguments...);

    template <int>
    static Function& real() {
        static Function function = nullptr;
        return function;
    }
    template <int which>
    static Result WINAPI call(Arguments... arguments) {
        ++counted;
        return real<which>()(arguments...);
    }
};

/// The places of the program's own table that lead to a function of this name.
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

template <int which, typename Function>
void exchange(std::string_view name, Function, bool count) {
    using Counting = Counted<Function>;
    Function& real = Counting::template real<which>();
    const int found = eachImport(name, [&](ULONGLONG& place) {
        if (count) std::memcpy(&real, &place, sizeof real);
        const Function function = count ? &Counting::template call<which> : real;
        write(place, reinterpret_cast<ULONGLONG>(function));
    });
    // One that the program no longer calls would not be missed otherwise.
    EXPECT_EQ(found, 1) << name;
}

void exchangeAll(bool count) {
    exchange<0>("CreateFileW", &CreateFileW, count);
    exchange<1>("FindFirstFileExW", &FindFirstFileExW, count);
    exchange<2>("GetFileAttributesW", &GetFileAttributesW, count);
    exchange<3>("GetFileAttributesExW", &GetFileAttributesExW, count);
}

}  // namespace

CallCount::CallCount() {
    exchangeAll(true);
    counted = 0;
}

CallCount::~CallCount() {
    exchangeAll(false);
}

int CallCount::calls() const {
    return counted;
}

}  // namespace coffrelune
