#pragma once

#include "settings/files/FileReplacement.h"

#include <string>
#include <string_view>

namespace quorbel {

/// A file that a command writes, whole or not at all. All throw CommandError, naming the file.
class OutputFile {
  public:
    explicit OutputFile(const std::string &path);

    [[nodiscard]] int descriptor() const { return file_.descriptor(); }
    void write(std::string_view bytes);
    /// Gives the file its name; without this call nothing is written.
    void commit();
    [[noreturn]] void fail(const std::string &reason) const;

  private:
    std::string path_; ///< as the user gave it
    FileReplacement file_;
};

} // namespace quorbel
