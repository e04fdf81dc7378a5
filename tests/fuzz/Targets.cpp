// The fuzz targets: one function per kind of external input, called for many inputs in the same
// process. NAME.seeds holds the first inputs of a target, one a line in quotes; they reach every
// branch worth mutating.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string_view>
#include <tuple>

#include "app/base/AppInfo.hpp"
#include "app/base/CFormPos.hpp"
#include "app/frmMain.hpp"
#include "content/CImageInfo.hpp"
#include "controls/Form.hpp"
#include "controls/TreeView.hpp"
#include "dialogs/frmAbout.hpp"
#include "flash/FirmwareImage.hpp"
#include "platform/headless/HeadlessFiles.hpp"
#include "platform/headless/HeadlessPlatform.hpp"
#include "platform/portable/CodePage1252.hpp"
#include "platform/portable/RegistryHive.hpp"
#include "settings/CAppSettings.hpp"
#include "settings/CEncryption.hpp"
#include "settings/CTreeViewEnh.hpp"
#include "support/Conversions.hpp"
#include "support/text/Text.hpp"
#include "support/text/Unicode.hpp"
#include "terminal/engine/TerminalParser.hpp"
#include "terminal/view/TerminalSelection.hpp"
#include "tests/Words.hpp"
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

/// Asserts an invariant of the code under test; a failure counts as a crash.
void Require(bool holds) {
    if (!holds) std::abort();
}

/// False if `body` raises RuntimeError. Any other exception counts as a crash.
bool Accepts(const std::function<void()>& body) {
    return Raised(body).Number() == 0;
}

/// Removes and returns the first `count` bytes of `input`, or all if there are fewer.
std::string_view Take(std::string_view& input, std::size_t count) {
    const std::string_view taken = input.substr(0, count);
    input.remove_prefix(taken.size());
    return taken;
}

/// Removes and returns the first byte of `input`, 0 if empty.
unsigned TakeByte(std::string_view& input) {
    const std::string_view taken = Take(input, 1);
    return taken.empty() ? 0 : static_cast<unsigned char>(taken.front());
}

/// Removes and returns the first line of `input`, without its line feed.
std::string_view TakeLine(std::string_view& input) {
    const std::string_view line = Take(input, input.find('\n'));
    Take(input, 1);
    return line;
}

/// Stores `value` as the program's `name` below `path`.
void Store(Registry& registry, const std::string& path, const std::string& name,
           std::string_view value) {
    RegistryKey key = 0;
    Require(registry.CreateKey(RegistryRoot::CurrentUser, kProgramKey + ("\\" + path),
                               kRegistryAllButOwner, key) == kRegistrySuccess);
    registry.SetValue(key, name, kRegistryString, value);
    registry.CloseKey(key);
}

/// The platform of all inputs, without message boxes of earlier ones.
ReportingPlatform& Headless() {
    static ReportingPlatform headless;
    headless.boxes.shown.clear();
    return headless;
}

/// Index of the picture cache: the first line of the input is the name of the displayed picture,
/// the rest is cache.txt.
void CacheIndex(std::string_view input) {
    ReportingPlatform& headless = Headless();
    static const auto window = std::make_shared<frmMain>(headless.manager, headless.platform);
    static const PromotionalPicture promotion(window->picPicture, headless.platform);
    const std::string name(TakeLine(input));
    const std::string index(input);
    window->picPicture.Tag(name);
    const std::string address = promotion.Address(ImageLines(index));
    if (name.empty()) {
        Require(address.starts_with("http:"));
        return;
    }
    if (address.empty()) return;
    // The address is a field of a line that contains the name.
    const std::size_t at = index.find("|" + address);
    Require(address.find_first_of("|\n") == std::string::npos && at != std::string::npos);
    Require(index.find(name) != std::string::npos);
}

void Convert(std::string_view text) {
    double number = 0;
    const bool isNumber = Accepts([&] { number = ToDouble(text); });
    if (isNumber) Require(IsNumeric(text));
    bool yes = false;
    if (Accepts([&] { yes = ToBool(text); })) Require(!isNumber || yes == (number != 0));
    std::int32_t whole = 0;
    if (Accepts([&] { whole = ToInt32(text); })) {
        Require(isNumber && std::abs(whole - number) <= 0.5);
        Require(ToInt32(std::to_string(whole)) == whole && ToInt32(TwoDigits(whole)) == whole);
    }
    if (isNumber && TrimBlanks(text).front() != '&') Require(LeadingNumber(text) == number);
    const std::size_t width = text.size() % 7;
    const std::string field = FixedWidth(text, width);
    Require(CharacterCount(field) == width && FixedWidth(field, width) == field);
}

void Scramble(const std::string& password, std::string_view bytes) {
    ReportingPlatform& headless = Headless();
    const std::string text = headless.codePage.FromAnsi(bytes);
    Require(headless.codePage.ToAnsi(text) == bytes);
    CEncryption encryption(headless.codePage, headless.files);
    encryption.Password = password;
    const std::string scrambled = encryption.EncryptStringAscii(text);
    if (!headless.boxes.shown.empty()) {
        // Only an empty key or one so long that its positions overflow may fail.
        Require(scrambled.empty() && (password.empty() || password.size() > 64));
        return;
    }
    Require(encryption.EncryptStringAscii(scrambled) == text);
    const std::u16string wide = Utf16FromUtf8(bytes);
    Require(encryption.EncryptString(encryption.EncryptString(wide)) == wide ||
            !headless.boxes.shown.empty());
}

/// Conversions between text and numbers, the 8-bit code page, and the scrambling of stored text.
/// The first line of the input is the password, the rest is the text.
void Conversions(std::string_view input) {
    Convert(input);
    const std::string password(TakeLine(input));
    Convert(input);
    Scramble(password, input);
}

/// Firmware images and other text files that are read into a list of lines.
void FirmwareImage(std::string_view input) {
    std::string text(input);
    const ImageLines lines{std::string(text)};
    std::string again;
    for (std::size_t i = 0; i <= lines.UBound(); ++i) again.append(lines[i]) += '\n';
    Require(!Accepts([&] { static_cast<void>(lines[lines.UBound() + 1]); }));
    // Joined again, the lines equal the text except for line ends.
    if (!text.ends_with('\n')) text += '\n';
    std::erase(text, '\r');
    std::erase(again, '\r');
    Require(again == text);
}

/// Stored window positions: the first byte selects whether the window is kept on the screen, the
/// rest is the record.
void FormPosition(std::string_view input) {
    constexpr Place kBefore = {1, 2, 3000, 4000};
    ReportingPlatform& headless = Headless();
    static const auto window = std::make_shared<frmAbout>(headless.manager, headless.strings);
    static CFormPos position(headless.registry, headless.codePage);
    window->Load();
    window->Place(kBefore);
    window->State(WindowState::Normal);
    position.Form = window.get();
    const bool keepOnScreen = (TakeByte(input) & 1) != 0;
    Store(headless.registry, position.SubKey, window->Name(), input);
    const bool restored = position.RestoreForm(keepOnScreen);
    const Place place = window->Place();
    if (!restored || window->State() != WindowState::Normal) {
        Require(place == kBefore);
        return;
    }
    Require(headless.boxes.shown.empty());
    Require(place.width >= 0 && place.height >= 0);
    const Size screen = headless.peers.ScreenSize();
    // A position at the far edge is allowed for a window smaller than one twip only.
    const auto onScreen = [](float at, float size, float limit) {
        return at >= 0 && (at < limit || (at == limit && size < 1));
    };
    Require(!keepOnScreen || (onScreen(place.left, place.width, screen.width) &&
                              onScreen(place.top, place.height, screen.height)));
    const auto saved = [&] {
        position.SaveForm();
        return headless.registry.Export();
    };
    const std::string before = saved();
    Require(position.RestoreForm(keepOnScreen) && saved() == before);
}

using Header = std::tuple<CImageInfo::Type, int, int, int>;

/// Reads `bytes` with one CImageInfo for all files, as the program does; zeros for a rejected file.
Header HeaderOf(std::string_view bytes) {
    static HeadlessFiles files;
    static CImageInfo info(files);
    files.WriteAll("p", bytes);
    if (!Accepts([] { info.ReadImageInfo("p"); })) return {};
    return {info.ImageType(), info.Width(), info.Height(), info.Depth()};
}

/// Headers of image files (GIF, JPEG, BMP, PNG).
void ImageInfo(std::string_view input) {
    const Header header = HeaderOf(input);
    const auto [type, width, height, depth] = header;
    Require(width >= 0 && width <= 65535 && height >= 0 && height <= 65535);
    if (type == CImageInfo::Type::Unknown) Require(header == Header{});
    if (type == CImageInfo::Type::Gif) Require(depth >= 1 && depth <= 8);
    // A truncated file reads as if padded with zeros.
    Require(HeaderOf(std::string(input) + std::string(16, '\0')) == header);
}

/// Stored node states of a tree: after restoring any text, save and restore is a round trip.
void NodeStates(std::string_view input) {
    static const FormDesign design = {"frmFuzz", "", "", {}, {}};
    ReportingPlatform& headless = Headless();
    const auto window = std::make_shared<Form>(headless.manager, design);
    TreeView tree(*window, "tvw");
    tree.Add({.key = "P1", .parent = "", .text = "heading"});
    tree.Add({.key = "C0", .parent = "P1", .text = "page"});
    tree.Add({.key = "", .parent = "P1", .text = "without a key"});
    CTreeViewEnh states(headless.registry, headless.codePage);
    states.Tree = &tree;
    const auto isOpen = [&tree](int node) {
        return tree.Nodes()[static_cast<std::size_t>(node)].expanded;
    };
    Store(headless.registry, states.SubKey, tree.Name(), input);
    states.RestoreNodeStates();
    const bool heading = isOpen(0);
    const bool page = isOpen(1);
    states.SaveNodeStates();
    tree.Expanded(0, !heading);
    tree.Expanded(1, !page);
    states.RestoreNodeStates();
    Require(isOpen(0) == heading && isOpen(1) == page && headless.boxes.shown.empty());
}

/// Text form of the registry, including damaged and hand-edited files.
void RegistryText(std::string_view input) {
    RegistryHive hive;
    const bool read = hive.Import(input) == 0;
    const std::string written = hive.Export();
    Require(read || written == RegistryHive().Export());
    Require(
        std::ranges::all_of(written, [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }));
    // What is written is read back the same, over the same contents as well as into an empty store.
    Require(hive.Import(written) == 0 && hive.Export() == written);
    RegistryHive other;
    Require(other.Import(written) == 0 && other.Export() == written);
}

/// Stored settings. The first byte of the input selects a property, the rest of the first line is
/// its new value, which the property rejects or stores. The following lines are the stored values
/// in loading order. Loaded settings must equal saved ones.
void Settings(std::string_view input) {
    constexpr void (CAppSettings::*kProperties[])(const std::string&) = {
        &CAppSettings::CommPort,     &CAppSettings::BaudRate, &CAppSettings::Parity,
        &CAppSettings::DataBits,     &CAppSettings::StopBits, &CAppSettings::ProxyPort,
        &CAppSettings::ProxyPassword};
    static HeadlessPlatform headless;
    headless.registry.Clear();
    const unsigned property = TakeByte(input);
    const std::string value(TakeLine(input));
    for (const char* name :
         {"AutoUnZip", "PassiveFTP", "Port", "Baud", "Parity", "DataBits", "EnableProxy",
          "ProxyHostname", "ProxtPort", "ProxyUsername", "ProxyPassword", "ProxyType"})
        Store(headless.registry, "Settings", name, TakeLine(input));
    CAppSettings settings(headless.registry, headless.codePage, headless.files);
    if (!Accepts([&] { settings.Initialize(); })) return;
    // A blank port is stored empty, which the next load replaces with the default.
    if (settings.ProxyPort().empty()) return;
    // All that an edit without a change stores.
    const auto saved = [](CAppSettings& edited) {
        edited.BeginEdit();
        edited.AutoUnZip(edited.AutoUnZip());
        edited.ApplyEdit();
        return headless.registry.Export();
    };
    const std::string before = saved(settings);
    settings.BeginEdit();
    Accepts([&] { (settings.*kProperties[property % std::size(kProperties)])(value); });
    settings.CancelEdit();
    Require(saved(settings) == before);
    CAppSettings other(headless.registry, headless.codePage, headless.files);
    other.Initialize();
    Require(saved(other) == before);
}

/// Random bytes in chunks of random size on a small terminal screen that is resized in between. The
/// screen's invariants are checked after each input.
/// The first byte of each chunk gives its length (below 0xE0), an encoding (below 0xF0) or a new
/// screen size.
void Terminal(std::string_view input) {
    const CodePage1252 system;
    TerminalScreen screen(12, 4, 8);
    TerminalParser parser(screen);
    parser.Reply = [](std::string_view answer) {
        Require(answer.starts_with("\x1B[") && answer.size() < 24);
    };
    while (!input.empty()) {
        const int head = static_cast<int>(TakeByte(input));
        screen.Now(head);
        if (head >= 0xF0)
            screen.Resize(1 + (head & 3) * 7, 1 + (head >> 2 & 3) * 2);
        else if (head >= 0xE0)
            parser.Encoding({static_cast<LineEncoding>(head % 5), system});
        else
            parser.Write(Take(input, static_cast<std::size_t>(head)));
    }
    const auto [row, column] = screen.Cursor();
    Require(row >= 0 && row < screen.Rows() && column >= 0 && column < screen.Columns());
    Require(screen.FirstLine() >= 0 && screen.FirstLine() <= screen.TopLine());
    Require(screen.EndLine() - screen.FirstLine() <= 8 + TerminalScreen::kMostRows);
    for (std::int64_t line = screen.FirstLine(); line < screen.EndLine(); ++line)
        Require(screen.Line(line).size() <= TerminalScreen::kMostColumns);
    const ScreenText shown(screen);
    TerminalSelection selection(shown);
    selection.SetAll();
    const std::string selected = selection.Text();
    for (std::string_view rest = selected; !rest.empty();) {
        const char32_t c = TakeCodePoint(rest);
        Require(c == U'\r' || c == U'\n' || (c >= U' ' && c != 0x7F && c <= 0x10FFFF));
    }
}

void (*fuzz)(std::string_view) = nullptr;

}  // namespace
}  // namespace vantor

/// The program NAME_fuzz runs the target NAME. Its last argument is the corpus folder, which
/// receives the seeds.
extern "C" int LLVMFuzzerInitialize(const int* count, char*** arguments) {
    using namespace vantor;
    const std::map<std::string, void (*)(std::string_view)> targets = {
        {"cache_index", CacheIndex},
        {"conversions", Conversions},
        {"firmware_image", FirmwareImage},
        {"form_pos", FormPosition},
        {"image_info", ImageInfo},
        {"node_states", NodeStates},
        {"registry_text", RegistryText},
        {"settings", Settings},
        {"terminal", Terminal},
    };
    const std::string program = std::filesystem::path(**arguments).filename();
    const std::string name = program.substr(0, program.rfind('_'));
    fuzz = targets.at(name);
    const std::filesystem::path folder = (*arguments)[*count - 1];
    if (!std::filesystem::is_directory(folder)) return 0;
    std::ifstream seeds(FOLDER "/" + name + ".seeds");
    int number = 0;
    for (std::string line; std::getline(seeds, line);)
        std::ofstream(folder / ("seed" + std::to_string(++number)), std::ios::binary)
            << WordsOf(line).at(0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vantor::fuzz({reinterpret_cast<const char*>(data), size});
    return 0;
}
