// Tests the digest against published vectors, and what the check says of damaged images.
#include <gmock/gmock.h>

#include "console/image/ImageCheck.hpp"
#include "console/image/Sha256.hpp"
#include "tests/faults/Images.hpp"

namespace vantor {
namespace {

TEST(Sha256, AgreesWithThePublishedVectorsHoweverTheMessageIsDivided) {
    const std::pair<std::string, const char*> vectors[] = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {std::string(1'000'000, 'a'),
         "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"}};
    for (const auto& [message, digest] : vectors) {
        EXPECT_EQ(Sha256Of(message), digest);
        Sha256 inPieces;
        for (std::size_t at = 0; at < message.size(); at += 77)
            inPieces.Add(std::string_view(message).substr(at, 77));
        EXPECT_EQ(inPieces.Finish(), digest);
    }
}

/// "code@line" of each finding.
std::string Findings(const std::string& image) {
    std::string codes;
    for (const ImageFinding& finding : CheckImage(image).findings)
        codes += std::string(codes.empty() ? "" : " ") + finding.code + "@" +
                 std::to_string(finding.line);
    return codes;
}

std::string Changed(std::string text, std::size_t at, const std::string& with) {
    return text.replace(at, with.size(), with);
}

TEST(ImageCheck, NamesEachDamageAndTheFirstLineThatHasIt) {
    const std::string whole = ImageOf(40);
    const std::string hex = ":020000021000EC\r\n:02000000AB0053\r\n:02000200ABFF52\r\n";
    const std::string hexEnd = ":00000001FF\r\n";
    const std::pair<std::string, const char*> rows[] = {
        {whole, ""},
        {hex + hexEnd, ""},
        {"Release notes\r\n\r\n", ""},
        {"", "no-lines@0"},
        {whole.substr(0, 100), "no-final-line-end@7 wrong-length@7 no-end-record@0"},
        {whole.substr(0, 16 * 20), "no-end-record@0"},
        {whole + whole, "wrong-address@42 lines-after-end@42"},
        {Changed(whole, 16 * 6 + 9, "1"), "wrong-checksum@7"},
        {Changed(whole, 16 * 6, "R"), "not-a-record@7"},
        {Changed(whole, 16 * 6 + 9, "\xC1"), "non-ascii@7 not-a-record@7"},
        {Changed(whole, 16 * 6 + 3, "6"), "wrong-length@7"},
        {Changed(whole, 16 * 6 + 14, " \n"), "mixed-line-ends@7 not-a-record@7"},
        {"S5030003F9\r\n" + std::string(kEndRecord) + "\r\n", "wrong-record-count@1"},
        {"S10500000102F8\nS5030001FB\nS9030000FC\n", "wrong-checksum@1"},
        {"S105FFFF0102F9\nS9030000FC\n", "wrong-address@1"},
        {hex, "no-end-record@0"},
        {hex + hex + hexEnd, "wrong-address@5"},
        {Changed(hex, 17 + 10, "C") + hexEnd, "wrong-checksum@2"},
        {"one\r\ntwo\nthree\x1A\n", "mixed-line-ends@2 control-characters@3"},
        {"one\rtwo\r", "lone-carriage-returns@1 no-final-line-end@1"}};
    for (const auto& [image, findings] : rows)
        EXPECT_EQ(Findings(image), findings) << image.substr(0, 120);
}

TEST(ImageCheck, MeasuresLinesAndAddresses) {
    const ImageReport report = CheckImage("\r\n" + ImageOf(40));
    EXPECT_EQ(report.lines, 42u);
    EXPECT_EQ(report.blankLines, 1u);
    EXPECT_EQ(report.longest, 14u);
    EXPECT_EQ(report.longestLine, 2u);
    EXPECT_EQ(report.dataRecords, 40u);
    EXPECT_EQ(report.lastAddress, 79u);
}

}  // namespace
}  // namespace vantor
