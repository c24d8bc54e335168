#include "platform/native/native_platform.h"
#include "platform/platform.h"
#include "platform/posix/posix_platform.h"

namespace coffrelune {

NativePlatform makeNativePlatform() {
    PosixOptions options;
    options.settingsDirectory = settingsDirectory();
    return NativePlatform(options);
}

std::string settingsPlace() {
    return settingsDirectory();
}

std::vector<std::string> programArguments(int count, char** values) {
    return {values, values + count};
}

// The copy is the program's own here and reports its progress.
std::int16_t nativeSystemLevel() {
    return newestSystemLevel;
}

std::vector<std::string> volumePlaces() {
    return {R"(C:\media\)", R"(C:\mnt\)", R"(C:\run\media\)"};
}

}  // namespace coffrelune
