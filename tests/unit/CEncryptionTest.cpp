// Scrambling is part of the stored format: values written by older versions must remain readable.
#include "settings/CEncryption.hpp"

#include <gtest/gtest.h>

#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

using namespace std::string_literals;

class CEncryptionTest : public testing::Test {
protected:
    /// The scrambled bytes of `text`.
    std::string Bytes(const std::string& text) {
        return mPlatform.codePage.ToAnsi(mEncryption.EncryptStringAscii(text));
    }

    ReportingPlatform mPlatform;
    CEncryption mEncryption{mPlatform.codePage, mPlatform.files};
};

// 25 bytes go past the end of the 16-byte key, so the vector includes the step back to index 1.
TEST_F(CEncryptionTest, TheStoredFormatMustNotChange) {
    EXPECT_EQ(Bytes("The quick brown fox jumps"),
              "\x1f\x68\xb4\x20\x6b\x75\xa7\x63\x06\x20\x20\x72\x22\x77\x0a\x20\x66\xbe\xdc\x3a"
              "\x62\xbb\xcb\x1d\x83");
    mEncryption.Password = "A";
    EXPECT_EQ(Bytes("ABCDEF"), "\0BCDEF"s) << "the key goes on from its byte 1, never from 0";
}

TEST_F(CEncryptionTest, AByteThatScramblesToZeroMustNotEndTheText) {
    const std::string scrambled = mEncryption.EncryptStringAscii("K123");
    EXPECT_EQ(scrambled.substr(0, 2), "\0"s + "1");
    EXPECT_EQ(mEncryption.EncryptStringAscii(scrambled), "K123");
    EXPECT_EQ(mEncryption.EncryptStringAscii(""), "");
    EXPECT_EQ(mEncryption.EncryptString(u""), u"");
    EXPECT_EQ(Told(mPlatform), Texts{});
}

// Position 129 is the first at which a key byte of 255 makes the product exceed 16 bits.
TEST_F(CEncryptionTest, AnOverflowIsToldOnceAndGivesNoHalfScrambledText) {
    const std::string text(1000, 'a');
    mEncryption.Password.clear();
    for (int i = 0; i < 64; ++i) mEncryption.Password += "\uffff";
    EXPECT_EQ(mEncryption.EncryptStringAscii(mEncryption.EncryptStringAscii(text)), text);
    EXPECT_EQ(Told(mPlatform), Texts{}) << "64 characters are few enough";

    mEncryption.Password += "\uffff";
    EXPECT_EQ(Bytes(text.substr(0, 129)).size(), 129u);
    EXPECT_EQ(Told(mPlatform), Texts{}) << "position 128 is still in range";
    EXPECT_EQ(mEncryption.EncryptStringAscii(text), "");
    EXPECT_EQ(mEncryption.EncryptString(std::u16string(100, u'a')), u"");
    EXPECT_EQ(Told(mPlatform), Texts(2, "none|EncryptByte|Error: 6. Overflow"));
}

TEST_F(CEncryptionTest, AFileIsReplacedByItsScrambledBytes) {
    const std::string plain = "line\r\n\0\xff end"s;
    mPlatform.files.Add("/d/in", plain);
    mPlatform.files.Add("/d/out", std::string(100, 'x'));
    mEncryption.InputFileName = "/d/in";
    mEncryption.OutputFileName = "/d/out";
    mEncryption.EncryptFile();
    const std::string scrambled = mPlatform.files.ReadAll("/d/out");
    EXPECT_EQ(scrambled, Bytes(mPlatform.codePage.FromAnsi(plain)));

    mEncryption.InputFileName = "/d/out";
    mEncryption.EncryptFile();
    EXPECT_EQ(mPlatform.files.ReadAll("/d/out"), plain) << "scrambled onto itself";
    EXPECT_EQ(Told(mPlatform), Texts{});
}

}  // namespace
}  // namespace vantor
