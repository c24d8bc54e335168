#include "platform/win32/time_stamps.h"

#include <windows.h>

#include <algorithm>

#include "platform/win32/temporary_file.h"

namespace coffrelune {

TimeTrial timeTrialOn(void* file) {
    return [file](std::uint64_t wanted) -> std::optional<std::uint64_t> {
        FILE_BASIC_INFO now{};
        if (stampFile(file, {0, 0, wanted}, 0) != 0) return {};
        if (GetFileInformationByHandleEx(file, FileBasicInfo, &now, sizeof now) == 0) return {};
        return static_cast<std::uint64_t>(now.LastWriteTime.QuadPart);
    };
}

FileTimes TimeStamps::fitting(void* copy, const FileTimes& times) {
    if (!tried_) grid_ = measureTimes(timeTrialOn(copy));
    tried_ = true;
    FileTimes fitted = times;
    if (!grid_) {
        kept_ = KeptTimes::lost;
    } else if (times.lastWrite != 0) {
        fitted.lastWrite = grid_->held(times.lastWrite);
        if (fitted.lastWrite != times.lastWrite) kept_ = std::max(kept_, KeptTimes::rounded);
    }
    return fitted;
}

}  // namespace coffrelune
