// Functions of a text that return a text or a number: the rules on which stored values, window
// designs, images and pictures rely.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <stdexcept>

#include "app/base/modSupport.hpp"
#include "console/Json.hpp"
#include "console/PortChoice.hpp"
#include "console/SessionReport.hpp"
#include "console/image/ImageCheck.hpp"
#include "console/image/Sha256.hpp"
#include "content/CImageInfo.hpp"
#include "content/PictureFiles.hpp"
#include "flash/FirmwareImage.hpp"
#include "platform/headless/HeadlessPlatform.hpp"
#include "platform/portable/RegistryHive.hpp"
#include "platform/portable/UsbNames.hpp"
#include "simulator/Fault.hpp"
#include "simulator/RunningMode.hpp"
#include "simulator/UartPacing.hpp"
#include "support/Conversions.hpp"
#include "support/LineSettings.hpp"
#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"
#include "terminal/options/TimeStamp.hpp"
#include "terminal/session/TypedBytes.hpp"
#include "terminal/view/ReceivedBytes.hpp"
#include "tests/faults/Images.hpp"
#include "tests/unit/Table.hpp"

namespace vantor {
namespace {

std::int32_t Whole(const std::string& word) {
    return std::stoi(word);
}

/// Both the check and the conversion, which must agree.
std::string Number(const std::string& text) {
    if (IsNumeric(text)) return Row(ToDouble(text));
    return Raised([&] { ToDouble(text); }).Is(ErrorNumber::TypeMismatch) ? "none" : "no error";
}

/// A text, a count and another text, and so on: the picture file.
std::string PictureHeader(const Words& words) {
    std::string bytes;
    for (std::size_t i = 1; i < words.size(); ++i)
        bytes += i % 2 == 1 ? words[i] : std::string(std::stoul(words[i]), 'x');
    HeadlessFiles files;
    files.Add("/p", bytes);
    CImageInfo info(files);
    files.Add("/first", "GIF89a\x05\x01\x04\x01\x07");
    info.ReadImageInfo("/first");  // none of its values may remain
    info.ReadImageInfo("/p");
    return Row(static_cast<int>(info.ImageType()), info.Width(), info.Height(), int{info.Depth()});
}

std::string Pictures(const Words& words) {
    HeadlessFiles files;
    for (const char* name : {"a.gif", "b.JPG", "c.jpg", "gif", "xbmp", "e.png", "f.jpeg", "h.bmp"})
        files.Add(std::string("/c/") + name, "");
    files.SetHidden("/c/h.bmp");
    Words names;
    std::string text = Row(PictureFilesToArray(files, words.at(1), words.size() > 2, false, names));
    for (const std::string& name : names) text += " " + name;
    return text;
}

std::string LinesOf(const std::string& text) {
    std::string lines;
    ImageLines first(text);
    const ImageLines image = std::move(first);
    for (std::size_t i = 0; i <= image.UBound(); ++i) lines += "[" + std::string(image[i]) + "]";
    const bool ends = Raised([&] { static_cast<void>(image[image.UBound() + 1]); }).Number() == 9;
    return ends ? lines : "no end";
}

std::string FaultOf(const std::string& text) {
    try {
        const Fault fault = ParseFault(text);
        return Row(static_cast<int>(fault.kind), fault.line, fault.times, fault.lateMs,
                   fault.silent);
    } catch (const std::invalid_argument& error) {
        const bool named = std::string(error.what()).find('"' + text + '"') != std::string::npos;
        return named ? "refused" : error.what();
    }
}

std::string Typed(const Words& words) {
    RunningMode indicator;
    std::string seen;
    for (std::size_t i = 1; i < words.size(); ++i) seen = indicator.Receive(words[i]);
    return seen;
}

/// Of the last 8 bytes, or of at most 3 times: what is kept, and when each byte arrived. The words
/// are texts and times; "clear" drops what has arrived before.
std::string Kept(const Words& words) {
    ReceivedBytes bytes(8, 3);
    for (std::size_t i = 1; i < words.size(); ++i) {
        if (words[i] == "clear") {
            bytes.Clear();
        } else {
            bytes.Append(words[i], std::stoll(words.at(i + 1)));
            ++i;
        }
    }
    const std::int64_t first = bytes.First();
    std::string text = Row(first, bytes.Read(first - 1, bytes.End() + 1) + "|");
    for (std::int64_t offset = first - 1; offset <= bytes.End(); ++offset) {
        const std::optional<std::int64_t> time = bytes.TimeAt(offset);
        text += time ? " " + std::to_string(*time) + bytes.At(offset) : " -";
    }
    return text;
}

/// The image of the words, as `ImageFrom` takes them; "@N" ends it at byte N, and "@N=TEXT" writes
/// over it there.
std::string ImageOfRow(const Words& words) {
    std::string image;
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::string& word = words[i];
        const std::size_t equals = word.find('=');
        if (!word.starts_with('@'))
            image += ImageFrom({word});
        else if (equals == std::string::npos)
            image.resize(std::stoul(word.substr(1)));
        else
            image.replace(std::stoul(word.substr(1)), word.size() - equals - 1,
                          word.substr(equals + 1));
    }
    return image;
}

/// "code@line" of each finding.
std::string Findings(const Words& words) {
    std::string codes;
    for (const ImageFinding& finding : CheckImage(ImageOfRow(words)).findings)
        codes +=
            std::string(codes.empty() ? "" : " ") + Row(finding.code) + "@" + Row(finding.line);
    return codes;
}

std::string Measures(const Words& words) {
    const ImageReport report = CheckImage(ImageOfRow(words));
    return Row(report.lines, report.blankLines, report.longest, report.longestLine,
               report.dataRecords, report.lastAddress);
}

std::string Digest(const std::string& message) {
    Sha256 inPieces;
    for (std::size_t at = 0; at < message.size(); at += 77)
        inPieces.Add(std::string_view(message).substr(at, 77));
    const std::string digest = inPieces.Finish();
    return digest == Sha256Of(message) ? digest : "differs in pieces";
}

/// The port that a name, serial number or link names, of one on board and three adapters; the table
/// of them all for no name.
std::string ChosenOf(const Words& words) {
    const auto adapter = [](const char* name, const char* device, const char* serial,
                            const char* link) {
        return SerialPortInfo{name, device, "USB Serial", "0403:6001", serial, {link}, 16};
    };
    const std::vector<SerialPortInfo> ports = {{"COM1", "/dev/ttyS0", "port"},
                                               adapter("COM9", "/dev/ttyUSB0", "A50X", "usb-A"),
                                               adapter("COM10", "/dev/ttyUSB1", "Q7", "usb-Q-if0"),
                                               adapter("COM11", "/dev/ttyUSB2", "Q7", "usb-Q-if1")};
    const CompiledStrings strings(Language::English);
    if (words.size() == 1) return PortTable(ports, strings);
    try {
        return ChosenPort(ports, words[1], strings).value_or("none");
    } catch (const RuntimeError& error) {
        return error.Description();
    }
}

/// An object with the text, and its members as they are read back. A part of it is no object.
std::string Json(const std::string& text) {
    const std::string line = JsonObject()
                                 .Text("t", text)
                                 .Number("n", -5)
                                 .Seconds("s", 61007)
                                 .TextOrNull("z", "")
                                 .Flag("f", true)
                                 .Line();
    for (std::size_t cut = 0; cut + 2 < line.size(); ++cut)
        if (JsonMembers(line.substr(0, cut))) return Row("read at", cut);
    std::string result = line;
    const auto members = JsonMembers(line).value();
    for (const auto& [name, value] : members) result += "|" + name + "=" + value;
    return result;
}

/// The record of an update with the image and the note.
std::string Record(const Words& words) {
    const SessionFacts facts{.start = IsoTime({2026, 1, 2, 3, 4, 5}, -210),
                             .host = "bench",
                             .user = "x",
                             .port = "COM3",
                             .adapter = {},
                             .image = words.at(1),
                             .note = words.at(2)};
    SessionEnd end;
    end.outcome = FlashOutcome::VerifyFailed;
    end.counts.lines = 41;
    end.counts.resends = 2;
    end.ms = 9050;
    ImageReport report;
    report.sha256 = "00ff";
    return RecordLine(facts, report, end);
}

/// When the last character of each run is complete: READY BITS SPEED COUNT, and so on.
std::string Paced(const Words& words) {
    UartPacing pacing;
    std::string ends;
    for (std::size_t i = 1; i < words.size(); i += 4) {
        Nanos end = 0;
        for (int count = Whole(words.at(i + 3)); count > 0; --count)
            end = pacing.Next(std::stoll(words[i]), static_cast<std::uint32_t>(Whole(words[i + 1])),
                              static_cast<std::uint32_t>(Whole(words[i + 2])));
        ends += Row(end, "");
    }
    return ends;
}

const std::string kRegistryHead = "REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Vantor]\n";

std::string Utf16(const std::string& text, bool highFirst) {
    std::string bytes;
    for (const char16_t unit : Utf16FromUtf8(text)) {
        const auto low = static_cast<char>(unit & 0xffu);
        const auto high = static_cast<char>(unit >> 8u);
        bytes += highFirst ? std::string{high, low} : std::string{low, high};
    }
    return bytes;
}

/// The file of a `form`: "file" is `lines` alone; else a version, "4" or "5", then the order of the
/// bytes in UTF-16, "-low" or "-high" first, and "-mark" for a byte order mark.
std::string FileOf(const std::string& form, const std::string& lines) {
    if (form == "file") return lines;
    std::string text = form.ends_with("-mark") ? "\uFEFF" : "";
    text += form.starts_with('5')
                ? "Windows Registry Editor Version 5.00\r\n" + kRegistryHead.substr(9)
                : kRegistryHead;
    text += lines;
    const bool highFirst = form.find("-high") != std::string::npos;
    return highFirst || form.find("-low") != std::string::npos ? Utf16(text, highFirst) : text;
}

/// What is written after `file` has been read, without the head if it is the usual one.
std::string Exported(const std::string& file) {
    RegistryHive hive;
    const std::size_t damagedLine = hive.Import(file);
    const std::string text = hive.Export();
    // Anything that the next write would lose counts as damage: the file must not be changed.
    if (damagedLine != 0) return Row(text == "REGEDIT4\n" ? "damaged" : "half taken", damagedLine);
    return text.starts_with(kRegistryHead) ? text.substr(kRegistryHead.size()) : text;
}

// clang-format off
const Actions kFunctions = {
    {"LeadingNumber", [](const Words& w) { return Row(LeadingNumber(w.at(1))); }},
    {"Number", [](const Words& w) { return Number(w.at(1)); }},
    {"ToInt16", [](const Words& w) { return Row(ToInt16(w.at(1))); }},
    {"ToInt32", [](const Words& w) { return Row(ToInt32(w.at(1))); }},
    {"ToBool", [](const Words& w) { return FromBool(ToBool(w.at(1))); }},
    {"TwoDigits", [](const Words& w) { return TwoDigits(Whole(w.at(1))); }},
    {"TimeOfDay", [](const Words& w) { return TimeOfDay(Whole(w.at(1))); }},
    {"CheckedAdd", [](const Words& w) { return Row(CheckedAdd(Whole(w.at(1)), Whole(w.at(2)))); }},
    {"CheckedMultiply", [](const Words& w) {
        return Row(CheckedMultiply(Whole(w.at(1)), Whole(w.at(2)))); }},
    {"FixedWidth", [](const Words& w) { return FixedWidth(w.at(1), std::stoul(w.at(2))) + "|"; }},
    {"CharacterCount", [](const Words& w) { return Row(CharacterCount(w.at(1))); }},
    {"ViaUtf16", [](const Words& w) {
        std::string bytes;
        for (const char16_t unit : Utf16FromUtf8(w.at(1)))
            bytes += {static_cast<char>(unit & 0xffu), static_cast<char>(unit >> 8u)};
        return Utf8FromUtf16(bytes); }},
    {"Utf8FromUtf16", [](const Words& w) { return Utf8FromUtf16(w.at(1)); }},
    {"TrimBlanks", [](const Words& w) { return std::string(TrimBlanks(w.at(1))) + "|"; }},
    {"FolderOf", [](const Words& w) {
        return Row(FolderOf(w.at(1)), FileNameOf(w.at(1))); }},
    {"Escaped", [](const Words& w) { return Escaped(w.at(1), w.at(2)); }},
    {"SameText", [](const Words& w) { return FromBool(SameText(w.at(1), w.at(2))); }},
    {"AddFinalSlash", [](const Words& w) { return AddFinalSlash(w.at(1)); }},
    {"AppPath", [](const Words& w) {
        HeadlessProcess process;
        process.executable = w.at(1);
        return AppPath(process); }},
    {"Line", [](const Words& w) { return FormatLineSettings(ParseLineSettings(w.at(1))); }},
    {"Language", [](const Words& w) {
        const Language language = LanguageOfLocale(w.at(1), w.at(2), w.at(3));
        return std::string(language == Language::Spanish ? "Spanish" : "English"); }},
    {"Lines", [](const Words& w) { return LinesOf(w.at(1)); }},
    {"NoLines", [](const Words&) { return Row(ImageLines().UBound()); }},
    {"DigestOfLines", [](const Words& w) { return Sha256Of(LinesOf(ImageFrom({w.at(1)}))); }},
    {"Description", [](const Words& w) { return StandardDescription(Whole(w.at(1))); }},
    {"Picture", PictureHeader},
    {"Pictures", Pictures},
    {"Findings", Findings},
    {"Measures", Measures},
    {"Sha256", [](const Words& w) { return Digest(ImageFrom({w.at(1)})); }},
    {"Port", ChosenOf},
    {"UsbNames", [](const Words& w) {
        SerialPortInfo port;
        TakeUsbNames(w.at(1), port);
        return Row(port.usbId, port.serialNumber) + "|"; }},
    {"Worse", [](const Words& w) {
        const auto a = static_cast<ExitStatus>(Whole(w.at(1)));
        const auto b = static_cast<ExitStatus>(Whole(w.at(2)));
        return Row(static_cast<int>(Worse(a, b)), static_cast<int>(Worse(b, a))); }},
    {"Fault", [](const Words& w) { return FaultOf(w.at(1)); }},
    {"Typed", Typed},
    {"Bytes", [](const Words& w) {
        const TextEncoding encoding(static_cast<LineEncoding>(Whole(w.at(2))), CodePage1252());
        const TypedBytes typed = ParseBytes(w.at(3), static_cast<BytesForm>(Whole(w.at(1))), encoding);
        return typed.wrongAt ? Row("wrong at", *typed.wrongAt) : typed.bytes; }},
    {"Kept", Kept},
    {"Paced", Paced},
    {"Json", [](const Words& w) { return Json(w.at(1)); }},
    {"Record", Record},
    {"Stamp", [](const Words& w) {
        const auto kind = static_cast<TimeStamps>(Whole(w.at(1)));
        return StampText(kind, std::stoll(w.at(2)), std::stoll(w.at(3))) + "|"; }},
};
// clang-format on

TEST(Functions, ReturnWhatTheTableSays) {
    ExpectTable("functions", kFunctions);
}

TEST(RegistryText, IsReadAndWrittenAsTheTableSays) {
    ExpectTable("registry", [](const Words& words) {
        std::string result;
        for (std::size_t i = 0; i + 1 < words.size(); ++i) {
            const std::string each = Exported(FileOf(words[i], words.back()));
            if (each != result) result += each;
        }
        return result;
    });
    std::string deep = "REGEDIT4\n[HKEY_CURRENT_USER";
    for (int i = 0; i < 200000; ++i) deep += "\\a";
    EXPECT_EQ(Exported(deep + "]\n"), "damaged 2");
}

}  // namespace
}  // namespace vantor
