// Files to which several processes append.
#pragma once

#include <string>
#include <string_view>

namespace vantor {

class SharedFiles {
public:
    virtual ~SharedFiles() = default;

    /// Appends `record` to the file `path`, after `header` where the file is empty or missing.
    /// Waits for a few seconds while another process appends. The record is whole in the file or,
    /// after an error, not there. A last line without an end is ended first. An empty `record`
    /// shows whether the file can be written, and creates it with `header`. Raises RuntimeError
    /// like `Files`.
    virtual void Append(const std::string& path, std::string_view header,
                        std::string_view record) = 0;
};

}  // namespace vantor
