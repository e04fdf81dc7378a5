// The fuzz targets: one function per kind of external input. NAME.seeds holds the first inputs of a
// target, one a line in quotes; they reach every branch worth mutating.
#include "tests/fuzz/Fuzz.hpp"

#include <algorithm>
#include <map>
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
#include "tests/faults/ReportingPlatform.hpp"

namespace vantor {
namespace {

struct CacheIndexBench {
    ReportingPlatform headless;
    std::shared_ptr<frmMain> window =
        std::make_shared<frmMain>(headless.manager, headless.platform);
    PromotionalPicture promotion{window->picPicture, headless.platform};
};

/// Index of the picture cache: the first line of the input is the name of the displayed picture,
/// the rest is cache.txt.
void CacheIndex(std::string_view input) {
    static CacheIndexBench bench;
    const std::string name(TakeLine(input));
    const std::string index(input);
    bench.window->picPicture.Tag(name);
    const std::string address = bench.promotion.Address(ImageLines(index));
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
    static ReportingPlatform headless;
    const std::string text = headless.codePage.FromAnsi(bytes);
    Require(headless.codePage.ToAnsi(text) == bytes);
    CEncryption encryption(headless.codePage, headless.files);
    encryption.Password = password;
    headless.boxes.shown.clear();
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

struct FormPositionBench {
    ReportingPlatform headless;
    std::shared_ptr<frmAbout> window =
        std::make_shared<frmAbout>(headless.manager, headless.strings);
    CFormPos position{headless.registry, headless.codePage};
    RegistryKey key = 0;

    FormPositionBench() {
        window->Load();
        position.Form = window.get();
        Require(headless.registry.CreateKey(position.RootKey,
                                            position.RegistryPath + "\\" + position.SubKey,
                                            kRegistryAllButOwner, key) == kRegistrySuccess);
    }
    std::string Saved() {
        position.SaveForm();
        return headless.registry.Export();
    }
};

/// Stored window positions: the first byte selects whether the window is kept on the screen, the
/// rest is the record.
void FormPosition(std::string_view input) {
    static FormPositionBench bench;
    constexpr Place kBefore = {1, 2, 3000, 4000};
    bench.headless.boxes.shown.clear();
    bench.window->Place(kBefore);
    bench.window->State(WindowState::Normal);
    const bool keepOnScreen = (TakeByte(input) & 1) != 0;
    bench.headless.registry.SetValue(bench.key, bench.window->Name(), kRegistryString, input);
    const bool restored = bench.position.RestoreForm(keepOnScreen);
    const Place place = bench.window->Place();
    if (!restored || bench.window->State() != WindowState::Normal) {
        Require(place == kBefore);
        return;
    }
    Require(bench.headless.boxes.shown.empty());
    Require(place.width >= 0 && place.height >= 0);
    const Size screen = bench.headless.peers.ScreenSize();
    // A position at the far edge is allowed for a window smaller than one twip only.
    const auto onScreen = [](float at, float size, float limit) {
        return at >= 0 && (at < limit || (at == limit && size < 1));
    };
    Require(!keepOnScreen || (onScreen(place.left, place.width, screen.width) &&
                              onScreen(place.top, place.height, screen.height)));
    const std::string saved = bench.Saved();
    Require(bench.position.RestoreForm(keepOnScreen) && bench.Saved() == saved);
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

const FormDesign kDesign = {"frmFuzz", "", "", {}, {}};

struct NodeStatesBench {
    ReportingPlatform headless;
    std::shared_ptr<Form> window = std::make_shared<Form>(headless.manager, kDesign);
    TreeView tree{*window, "tvw"};
    CTreeViewEnh states{headless.registry, headless.codePage};
    RegistryKey key = 0;

    NodeStatesBench() {
        tree.Add({.key = "P1", .parent = "", .text = "heading"});
        tree.Add({.key = "C0", .parent = "P1", .text = "page"});
        tree.Add({.key = "", .parent = "P1", .text = "without a key"});
        states.Tree = &tree;
        Require(headless.registry.CreateKey(states.RootKey,
                                            states.RegistryPath + "\\" + states.SubKey,
                                            kRegistryAllButOwner, key) == kRegistrySuccess);
    }
    std::string Open() const {
        std::string open;
        for (const TreeNode& node : tree.Nodes()) open += node.expanded ? 'x' : '-';
        return open;
    }
};

/// Stored node states of a tree: after restoring any text, save and restore is a round trip.
void NodeStates(std::string_view input) {
    static NodeStatesBench bench;
    bench.headless.boxes.shown.clear();
    bench.headless.registry.SetValue(bench.key, bench.tree.Name(), kRegistryString, input);
    bench.states.RestoreNodeStates();
    const std::string open = bench.Open();
    bench.states.SaveNodeStates();
    for (int node = 0; node < 2; ++node)
        bench.tree.Expanded(node, open[static_cast<std::size_t>(node)] == '-');
    bench.states.RestoreNodeStates();
    Require(bench.Open() == open && bench.headless.boxes.shown.empty());
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

/// All that an edit of `settings` without a change stores.
std::string Saved(CAppSettings& settings, const RegistryHive& registry) {
    settings.BeginEdit();
    settings.AutoUnZip(settings.AutoUnZip());
    settings.ApplyEdit();
    return registry.Export();
}

void Store(Registry& registry, std::string_view input) {
    const AppInfo app;
    RegistryKey key = 0;
    registry.CreateKey(RegistryRoot::CurrentUser,
                       "SOFTWARE\\" + app.companyName + "\\" + app.title + "\\Settings",
                       kRegistryAllButOwner, key);
    for (const char* name :
         {"AutoUnZip", "PassiveFTP", "Port", "Baud", "Parity", "DataBits", "EnableProxy",
          "ProxyHostname", "ProxtPort", "ProxyUsername", "ProxyPassword", "ProxyType"})
        registry.SetValue(key, name, kRegistryString, TakeLine(input));
    registry.CloseKey(key);
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
    Store(headless.registry, input);
    CAppSettings settings(headless.registry, headless.codePage, headless.files);
    if (!Accepts([&] { settings.Initialize(); })) return;
    // A blank port is stored empty, which the next load replaces with the default.
    if (settings.ProxyPort().empty()) return;
    const std::string before = Saved(settings, headless.registry);
    settings.BeginEdit();
    Accepts([&] { (settings.*kProperties[property % std::size(kProperties)])(value); });
    settings.CancelEdit();
    Require(Saved(settings, headless.registry) == before);
    CAppSettings other(headless.registry, headless.codePage, headless.files);
    other.Initialize();
    Require(Saved(other, headless.registry) == before);
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

}  // namespace

void Fuzz(std::string_view target, std::string_view input) {
    static const std::map<std::string_view, void (*)(std::string_view)> kTargets = {
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
    kTargets.at(target)(input);
}

}  // namespace vantor
