#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(Time, PosixSecondsAndRecords) {
    // seconds, then year, month, day of week (0 Sunday), day, hour, minute, second
    // clang-format off
    const struct { int64_t seconds; STRUCT_QN_TIME t; } known[] = {
        {0, {1970, 1, 4, 1, 0, 0, 0, 0}}, {951782400, {2000, 2, 2, 29, 0, 0, 0, 0}},
        {-1, {1969, 12, 3, 31, 23, 59, 59, 0}}, {4107542400, {2100, 3, 1, 1, 0, 0, 0, 0}},
        {-11644473600, {1601, 1, 1, 1, 0, 0, 0, 0}}, {910670515199, {30827, 12, 5, 31, 23, 59, 59, 0}},
    };
    // clang-format on
    for (const auto& k : known) {
        STRUCT_QN_TIME t;
        std::memset(&t, 0xAB, sizeof t);
        ASSERT_EQ(QNTimeFromPosix(k.seconds, &t), QN_S_OK) << k.seconds;
        EXPECT_EQ(std::memcmp(&t, &k.t, sizeof t), 0)
            << k.seconds << " gave " << t.wYear << "-" << t.wMonth << "-" << t.wDay;
        t.wMilliseconds = 999; // dropped on the way back
        int64_t back = 0;
        EXPECT_EQ(QNTimeToPosix(&t, &back), QN_S_OK);
        EXPECT_EQ(back, k.seconds);
    }
    STRUCT_QN_TIME t;
    for (int64_t outside : {int64_t{-11644473601}, int64_t{910670515200}, INT64_MIN, INT64_MAX})
        EXPECT_EQ(QNTimeFromPosix(outside, &t), QN_E_INVALIDARG) << outside;

    // Feb 29 of a common year and of 1900, April 31, then each field out of its range.
    const STRUCT_QN_TIME bad[] = {
        {2001, 2, 0, 29, 0, 0, 0, 0},   {1900, 2, 0, 29, 0, 0, 0, 0},  {2001, 4, 0, 31, 0, 0, 0, 0},
        {2001, 2, 0, 0, 0, 0, 0, 0},    {2001, 0, 0, 1, 0, 0, 0, 0},   {2001, 13, 0, 1, 0, 0, 0, 0},
        {2001, 1, 0, 1, 24, 0, 0, 0},   {2001, 1, 0, 1, 0, 60, 0, 0},  {2001, 1, 0, 1, 0, 0, 60, 0},
        {2001, 1, 0, 1, 0, 0, 0, 1000}, {1600, 12, 0, 31, 0, 0, 0, 0}, {30828, 1, 0, 1, 0, 0, 0, 0},
    };
    int64_t seconds = 0;
    for (const STRUCT_QN_TIME& r : bad)
        EXPECT_EQ(QNTimeToPosix(&r, &seconds), QN_E_INVALIDARG)
            << r.wYear << "-" << r.wMonth << "-" << r.wDay << " " << r.wHour << ":" << r.wMinute
            << ":" << r.wSecond << "." << r.wMilliseconds;
    const STRUCT_QN_TIME leapDay = {2000, 2, 0, 29, 0, 0, 0, 0};
    EXPECT_EQ(QNTimeToPosix(&leapDay, &seconds), QN_S_OK);
}
