#include "tests/faults/Matrix.hpp"

namespace vantor {
namespace {

void AddLineFaults(std::vector<MatrixRow>& rows) {
    struct Kind {
        const char* name;
        LineFaultKind kind;
        std::size_t byte;
        std::uint32_t ms;
    };
    using enum LineFaultKind;
    struct Way {
        const char* name;
        Direction direction;
        std::size_t byte;  // in the middle of a command, in a record's length, or in "OK"
    };
    for (const Way& way : {Way{" to the indicator", Direction::ToDevice, 3},
                           Way{" to the program", Direction::ToHost, 1}})
        for (const Kind& kind :
             {Kind{"dropped", Drop, way.byte, 0}, Kind{"doubled", Double, way.byte, 0},
              Kind{"garbled", Garble, way.byte, 0}, Kind{"0.5 s late", Delay, way.byte, 500},
              Kind{"25 s late", Delay, way.byte, 25000}, Kind{"split", Split, 0, 30},
              Kind{"unplugged at once", Unplug, 0, 0}, Kind{"unplugged", Unplug, way.byte, 0}})
            rows.push_back({std::string(kind.name) + way.name,
                            LineFault{kind.kind, way.direction, kind.byte, kind.ms}});
    // The type digit after the S: an S1 data record becomes an S0 header.
    rows.push_back({"record type garbled", LineFault{Garble, Direction::ToDevice, 1}, true});
}

void AddIndicatorFaults(std::vector<MatrixRow>& rows) {
    for (const char* text : {"nak@0",        "nak@0x4",           "silent@0",      "silent@0x4",
                             "late=500@0",   "late=25000@0",      "drop@0",        "garble@0",
                             "garble@0x4",   "noise@0",           "split@0",       "done@0",
                             "done@0x1000",  "verify@0",          "verify@0x1000", "hangup@0",
                             "no-trav",      "no-trav=silent",    "no-baud",       "no-baud=silent",
                             "no-sysload",   "no-sysload=silent", "verify-failed", "no-verdict",
                             "split-verdict"}) {
        std::string name = text;
        if (const std::size_t at = name.find("@0"); at != std::string::npos) name.erase(at, 2);
        rows.push_back({name, ParseFault(text)});
    }
}

}  // namespace

const std::vector<MatrixRow>& MatrixRows() {
    static const std::vector<MatrixRow> kRows = [] {
        std::vector<MatrixRow> rows;
        AddLineFaults(rows);
        AddIndicatorFaults(rows);
        rows.push_back({"abort pressed", UserAct{.close = false, .afterMs = 1}});
        rows.push_back({"window closed", UserAct{.close = true, .afterMs = 1}});
        return rows;
    }();
    return kRows;
}

}  // namespace vantor
