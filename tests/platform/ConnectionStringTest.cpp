#include "ConnectionString.h"

#include <gtest/gtest.h>

using namespace qi;

TEST(ConnectionString, AttributesAreReadAsTheDriverManagerReadsThem)
{
    const auto a = connectionAttributes("ODBC;DRIVER={PostgreSQL Unicode};Server = host ; PWD={Fa;lsch=99};UID=sa");
    ASSERT_EQ(a.size(), 5u);
    EXPECT_EQ(a[0].key, "ODBC");
    EXPECT_FALSE(a[0].hasValue);
    EXPECT_EQ(a[1].key, "DRIVER");
    EXPECT_EQ(a[1].value, "PostgreSQL Unicode");
    EXPECT_EQ(a[2].key, "Server");
    EXPECT_EQ(a[2].value, "host");
    EXPECT_EQ(a[3].key, "PWD");
    EXPECT_EQ(a[3].value, "Fa;lsch=99");
    EXPECT_EQ(a[4].key, "UID");
    EXPECT_EQ(a[4].value, "sa");
}

TEST(ConnectionString, DoubledClosingBracesStandForOneInsideBraces)
{
    const auto a = connectionAttributes("PWD={a}}b;c}}};DSN=x");
    ASSERT_EQ(a.size(), 2u);
    EXPECT_EQ(a[0].value, "a}b;c}");
    EXPECT_EQ(a[1].value, "x");
}

TEST(ConnectionString, PasswordKeysInAnyLetterCase)
{
    EXPECT_TRUE(isPasswordKey("PWD"));
    EXPECT_TRUE(isPasswordKey("pwd"));
    EXPECT_TRUE(isPasswordKey("Password"));
    EXPECT_TRUE(isPasswordKey(" PASSWORD "));
    EXPECT_FALSE(isPasswordKey("UID"));
    EXPECT_FALSE(isPasswordKey("DSN"));
}

struct MaskCase {
    const char* connection;
    const char* shown;
};

class MaskedPasswords : public ::testing::TestWithParam<MaskCase> {};

TEST_P(MaskedPasswords, ShowNothingOfThePassword)
{
    EXPECT_EQ(maskedConnectionString(GetParam().connection), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, MaskedPasswords,
    ::testing::Values(MaskCase{"DSN=Quarn;UID=sa;PWD=geheim", "DSN=Quarn;UID=sa;PWD=***"},
                      MaskCase{"DSN=Quarn;PWD={Fa;lsch=99};UID=sa", "DSN=Quarn;PWD=***;UID=sa"},
                      MaskCase{"DSN=Quarn;PWD={Fa;lsch=99};", "DSN=Quarn;PWD=***;"},
                      MaskCase{"DSN=Quarn;PWD = x;UID=sa", "DSN=Quarn;PWD = ***;UID=sa"},
                      MaskCase{"DSN=Quarn;PWD = x ", "DSN=Quarn;PWD = *** "},
                      MaskCase{"DSN=Quarn;Password=geheim", "DSN=Quarn;Password=***"},
                      MaskCase{"dsn=Quarn;pAsSwOrD=geheim;pwd=zwei", "dsn=Quarn;pAsSwOrD=***;pwd=***"},
                      MaskCase{"ODBC;DSN=Quarn;PWD={a}}b;c}}}", "ODBC;DSN=Quarn;PWD=***"},
                      MaskCase{"DSN=Quarn;PWD={offen;UID=sa", "DSN=Quarn;PWD=***"},
                      MaskCase{"DSN=Quarn;PWD=", "DSN=Quarn;PWD=***"},
                      MaskCase{"DSN=Quarn;UID=sa", "DSN=Quarn;UID=sa"}));

TEST(ConnectionString, WithoutPasswordLeavesEveryOtherAttribute)
{
    EXPECT_EQ(connectionStringWithoutPassword("DRIVER={PostgreSQL Unicode};PWD={Fa;lsch=99};UID=sa;password = x"),
              "DRIVER={PostgreSQL Unicode};UID=sa");
    EXPECT_EQ(connectionStringWithoutPassword("DSN=Quarn"), "DSN=Quarn");
}

TEST(ConnectionString, PasswordsInsideAnotherTextAreMasked)
{
    EXPECT_EQ(withoutPasswordsOf("DSN=Q;PWD={Fa;lsch=99}", "Anmeldung mit 'Fa;lsch=99' abgelehnt"),
              "Anmeldung mit '***' abgelehnt");
    EXPECT_EQ(withoutPasswordsOf("DSN=Q;PWD={a}}bcd}", "a}bcd und {a}}bcd}"), "*** und ***");
    // A password too short to be told from ordinary words leaves the text as it is.
    EXPECT_EQ(withoutPasswordsOf("DSN=Q;PWD=e", "Server nicht erreichbar"), "Server nicht erreichbar");
}
