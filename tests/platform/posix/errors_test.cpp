#include "platform/posix/errors.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <map>

namespace coffrelune {
namespace {

TEST(Errors, BearTheNumbersThatTheFinalReportKnows) {
    const std::map<int, std::uint32_t> expected = {
        {0, 0},           {ENOENT, 2},         {EACCES, 5},          {EPERM, 5},
        {EISDIR, 5},      {EROFS, 19},         {ENOMEDIUM, 21},      {EBUSY, 32},
        {ETXTBSY, 32},    {EAGAIN, 33},        {EDEADLK, 33},        {ENODEV, 55},
        {ENXIO, 55},      {ESTALE, 55},        {ENOTCONN, 55},       {EHOSTDOWN, 1232},
        {ETIMEDOUT, 121}, {ENETUNREACH, 1231}, {ECONNREFUSED, 1225}, {ECONNRESET, 64},
        {EINTR, 995},     {ENOSPC, 112},       {EDQUOT, 112},        {ENAMETOOLONG, 206},
        {EIO, 1117},      {EMFILE, 4},         {ENFILE, 4},          {ENOMEM, 8},
        {EFBIG, 223},     {EEXIST, 183},       {ENOTDIR, 267},       {ENOTEMPTY, 145},
        {ELOOP, 1921},    {EXDEV, 17},         {ENODATA, 38},        {EOPNOTSUPP, 50},
        {ECANCELED, 1235}};
    for (const auto& [error, number] : expected) EXPECT_EQ(windowsError(error), number) << error;
}

TEST(Errors, TellDamageOfTheMediumFromTheRest) {
    EXPECT_EQ(windowsError(EUCLEAN), 1117U);
    EXPECT_EQ(windowsError(EBADMSG), 1117U);
    EXPECT_EQ(windowsError(EINVAL), 1U);
    EXPECT_EQ(windowsError(ENOTTY), 1U);
}

TEST(Errors, StatusCarriesNumberAndPath) {
    const Status status = systemFailure(ENOSPC, "D:\\a");
    EXPECT_FALSE(status.ok());
    EXPECT_EQ(status.code(), 112U);
    EXPECT_EQ(status.path(), "D:\\a");
}

}  // namespace
}  // namespace coffrelune
