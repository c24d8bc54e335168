#include "platform/memory/memory_platform.h"

namespace coffrelune {

Platform MemoryPlatform::platform(FileService& files) {
    return {files, drives_, clock_, locale_, ansi_, sounds_, windows_};
}

}  // namespace coffrelune
