// Examines an image file without sending it: its size and digest, its lines, and what in it is
// suspicious. Does not decide whether it may be sent.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "console/image/RecordCheck.hpp"
#include "resources/texts/Str.hpp"

namespace vantor {

class StringTable;

/// Something suspicious.
struct ImageFinding {
    const char* code;     ///< the same in every language and version: "no-end-record"
    Str text;             ///< with "%1" for the count and "%2" for the line
    std::uint64_t count;  ///< how many lines, characters or records; 0 when it is not a count
    std::uint64_t line;   ///< the first line concerned, from 1; 0 for the whole file
};

struct ImageReport {
    std::uint64_t size = 0;
    std::string sha256;
    std::uint64_t lines = 0;  ///< separated by line feeds, as they are sent
    std::uint64_t blankLines = 0;
    std::uint64_t longest = 0;      ///< characters of the longest line
    std::uint64_t longestLine = 0;  ///< the first line of that length
    std::uint64_t lineFeeds = 0;    ///< line ends without a carriage return
    std::uint64_t pairs = 0;        ///< line ends of carriage return and line feed
    RecordFormat format = RecordFormat::None;
    std::uint64_t dataRecords = 0;
    bool hasAddresses = false;
    std::uint64_t firstAddress = 0;
    std::uint64_t lastAddress = 0;
    std::vector<ImageFinding> findings;
};

/// Examines the contents of a file. More than half of the lines decide the format, so that a
/// damaged line is named as such.
ImageReport CheckImage(std::string_view bytes);

/// "Motorola S-records", or the word for none.
std::string NameOf(RecordFormat format, const StringTable& strings);
/// "CR LF", "LF", "CR LF, LF", or the word for none.
std::string LineEndsOf(const ImageReport& report, const StringTable& strings);
/// The sentence that describes `finding`.
std::string Described(const ImageFinding& finding, const StringTable& strings);
/// The report for people, several lines. `name` names the file.
std::string Described(const ImageReport& report, const std::string& name,
                      const StringTable& strings);

}  // namespace vantor
