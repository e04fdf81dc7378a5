// Program files with damaged version resources. After the first byte, the input is a whole file
// ('F') or a version block that is embedded in a valid one.
#include "dialogs/CVersionInfo.hpp"
#include "platform/headless/HeadlessPlatform.hpp"
#include "platform/portable/VersionResources.hpp"
#include "tests/ProgramFile.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {

std::vector<std::string> Seeds() {
    const std::string block =
        VersionBlock({VersionText("ProductVersion", "9"), VersionText("FileVersion", " 2.05.31 ")});
    return {"F" + ProgramAround(block), "B" + block};
}

void Fuzz(std::string_view input) {
    static HeadlessPlatform headless;
    const bool wholeFile = TakeByte(input) == 'F';
    const std::string program = wholeFile ? std::string(input) : ProgramAround(std::string(input));
    const std::string_view block = VersionBlockIn(program);
    if (!wholeFile) Require(block == input);
    if (!block.empty())
        Require(block.data() >= program.data() &&
                block.data() + block.size() <= program.data() + program.size());
    headless.files.WriteAll("p", program);
    CVersionInfo info(headless.versions, headless.strings);
    const std::string version = info.FileVersion("p");
    Require(!version.empty() && version.find('\0') == std::string::npos);
    Require(version.front() != ' ' && version.back() != ' ');
    // Each UTF-16 code unit takes at most three bytes in UTF-8.
    Require(version == headless.strings.Text(Str::UnknownVersion) ||
            version.size() <= block.size() / 2 * 3);
}

}  // namespace vantor
