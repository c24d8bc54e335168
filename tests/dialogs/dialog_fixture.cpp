#include "dialogs/dialog_fixture.h"

namespace coffrelune {

DialogTest::DialogTest() : system(platform, {"", home, 3, 5, R"(C:\Coffrelune\coffrelune.exe)"}) {
    disk().directory(home);
}

void DialogTest::TearDown() {
    EXPECT_THAT(user().problems(), testing::IsEmpty());
}

void DialogTest::loadSettings(const std::string& content) {
    disk().file(settingsFile, content);
    system.LoadSettings();
    memory.files().clearCalls();
}

std::string DialogTest::setting(const std::string& section, const std::string& key) {
    return system.ReadSetting(section, key);
}

}  // namespace coffrelune
