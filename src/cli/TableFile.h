#pragma once

#include "cli/NamelessFile.h"

#include <string>
#include <string_view>

namespace quorbel {

/// Rows of comma-separated values under a row of names. The file appears when it is finished.
/// Throws CommandError, naming it, when it cannot be written.
class TableFile {
  public:
    /// `names`: the first row, without its line end, as all rows.
    TableFile(const std::string &path, std::string_view names);

    void addRow(std::string_view row);

    void finish();

  private:
    void flush();

    std::string path_;
    NamelessFile file_;
    std::string pending_;
};

} // namespace quorbel
