#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>

#include "platform/desktop/fake_programs.h"
#include "platform/posix/desktop/posix_desktop.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

constexpr const char* twoCards =
    " 0 [PCH            ]: HDA-Intel - HDA Intel PCH\n"
    "                      HDA Intel PCH at 0xdf240000 irq 141\n"
    " 1 [Casque         ]: USB-Audio - Casque [1]\n"
    "                      Casque at usb-0000:00:14.0-2, full speed\n";

class DesktopSoundsTest : public testing::Test {
  protected:
    ~DesktopSoundsTest() override {
        if (server_ >= 0) close(server_);
    }

    const TemporaryDirectory& disk() const { return programs_.disk(); }

    void cards(const std::string& text) { disk().write("cards", text); }

    void startServer() {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        ASSERT_LT(disk().at("server").size(), sizeof address.sun_path);
        std::strcpy(address.sun_path, disk().at("server").c_str());
        server_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        ASSERT_EQ(bind(server_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }

    FakePrograms programs_;
    DriveTable table_{{PathRoot::drive('D', programs_.disk().makeDirectory("d"))}};
    DesktopSounds sounds_{table_,
                          {programs_.searchPath(),
                           programs_.disk().at("cards"),
                           {programs_.disk().at("nothing"), programs_.disk().at("server")}}};
    int server_ = -1;
};

TEST_F(DesktopSoundsTest, CountsTheCards) {
    programs_.install("aplay");
    EXPECT_EQ(sounds_.deviceCount(), 0);
    cards("--- no soundcards ---\n");
    EXPECT_EQ(sounds_.deviceCount(), 0);
    cards(twoCards);
    EXPECT_EQ(sounds_.deviceCount(), 2);
}

TEST_F(DesktopSoundsTest, AServerIsADeviceWhereThereIsNoCard) {
    programs_.install("paplay");
    disk().write("nothing", "an ordinary file");
    EXPECT_EQ(sounds_.deviceCount(), 0);
    startServer();
    EXPECT_EQ(sounds_.deviceCount(), 1);
}

TEST_F(DesktopSoundsTest, NothingIsHeardWithoutAPlayer) {
    cards(twoCards);
    startServer();
    EXPECT_EQ(sounds_.deviceCount(), 0);
    sounds_.play("D:\\Ok.wav");
    EXPECT_THAT(programs_.calls(), testing::IsEmpty());
}

TEST_F(DesktopSoundsTest, PlaysThroughTheServersPlayer) {
    for (const char* player : {"aplay", "paplay"}) programs_.install(player);
    startServer();
    sounds_.play("D:\\Mon Ok.wav");
    EXPECT_THAT(programs_.argumentsOf("paplay"), ElementsAre(disk().at("d/Mon Ok.wav")));
    EXPECT_THAT(programs_.calls(), testing::Not(testing::Contains("aplay")));
}

TEST_F(DesktopSoundsTest, WithoutAServerSpeaksToTheCard) {
    for (const char* player : {"aplay", "paplay", "canberra-gtk-play"}) programs_.install(player);
    sounds_.play("D:\\Ok.wav");
    EXPECT_THAT(programs_.argumentsOf("aplay"), ElementsAre("-q", disk().at("d/Ok.wav")));
}

}  // namespace
}  // namespace coffrelune
