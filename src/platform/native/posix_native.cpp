#include <cstdlib>

#include "platform/native/native_platform.h"
#include "platform/platform.h"
#include "platform/posix/desktop/posix_desktop.h"
#include "platform/posix/desktop/posix_drive_information.h"
#include "platform/posix/desktop/posix_task_scheduler.h"
#include "platform/posix/posix_contents.h"
#include "platform/posix/posix_output_file.h"
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

std::unique_ptr<DriveInformation> makeDriveInformation(NativePlatform& platform) {
    return std::make_unique<PosixDriveInformation>(platform.driveTable());
}

std::unique_ptr<ContentReader> makeContentReader(NativePlatform& platform) {
    return std::make_unique<PosixContents>(platform.driveTable());
}

Status createOutputFile(NativePlatform& platform, const std::string& path,
                        std::unique_ptr<OutputFile>& file) {
    return createOutputFile(platform.driveTable(), path, file);
}

std::unique_ptr<TaskScheduler> makeTaskScheduler(NativePlatform& platform) {
    const auto variable = [](const char* name) -> const char* { return std::getenv(name); };
    return std::make_unique<PosixTaskScheduler>(platform.driveTable(),
                                                SchedulerOptions::fromEnvironment(variable));
}

void notifyDesktop(NativePlatform& platform, const std::string& title, const std::string& text) {
    const char* path = std::getenv("PATH");
    PosixShell(platform.driveTable(), path == nullptr ? "" : path).notify(title, text);
}

std::string nativePath(NativePlatform& platform, const std::string& path) {
    Place place;
    const Status located = platform.driveTable().paths().locate(path, place);
    return located.ok() ? place.native : std::string();
}

std::vector<std::string> volumePlaces() {
    return {R"(C:\media\)", R"(C:\mnt\)", R"(C:\run\media\)"};
}

}  // namespace coffrelune
