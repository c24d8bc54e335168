#include "platform/native/native_platform.h"
#include "platform/posix/program_place.h"

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

std::vector<std::string> volumePlaces() {
    return {R"(C:\media\)", R"(C:\mnt\)", R"(C:\run\media\)"};
}

}  // namespace coffrelune
