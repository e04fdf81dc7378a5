// Index of the picture cache: the first line of the input is the name of the displayed picture,
// the rest is cache.txt.
#include "app/frmMain.hpp"
#include "tests/faults/ReportingPlatform.hpp"
#include "tests/fuzz/Fuzz.hpp"

namespace vantor {
namespace {

struct Bench {
    ReportingPlatform headless;
    std::shared_ptr<frmMain> window =
        std::make_shared<frmMain>(headless.manager, headless.platform);
    PromotionalPicture promotion{window->picPicture, headless.platform};
};

}  // namespace

std::vector<std::string> Seeds() {
    return {"a.gif\n1|2|aa.gif|http://aa|5\r\n1|2|a.gif|http://a",
            "a.gif\na.gif|2|3\n|||http://b|a.gif", "\n1|2|3|4"};
}

void Fuzz(std::string_view input) {
    static Bench bench;
    const std::string name(TakeLine(input));
    const std::string index(input);
    bench.window->picPicture.Tag(name);
    const std::string address = bench.promotion.Address(ImageLines(index));
    if (name.empty()) {
        Require(address.starts_with("http:"));
        return;
    }
    if (address.empty()) return;
    // The address follows the third bar of a line that contains the name.
    Require(address.find_first_of("|\n") == std::string::npos);
    bool found = false;
    for (std::size_t at = 0; (at = index.find("|" + address, at)) != std::string::npos; ++at) {
        const std::size_t start = index.rfind('\n', at) + 1;
        const std::string line = index.substr(start, index.find('\n', at) - start);
        const auto bars =
            std::count(line.begin(), line.begin() + static_cast<long>(at - start), '|');
        found = found || (bars == 2 && line.find(name) != std::string::npos);
    }
    Require(found);
}

}  // namespace vantor
