#pragma once

#include "settings/files/FileReplacement.h"

#include <string>
#include <string_view>

namespace quorbel {

/// An output file that appears atomically. All functions throw CommandError with the file's name.
class OutputFile {
  public:
    explicit OutputFile(const std::string &path);

    [[nodiscard]] int descriptor() const { return file_.descriptor(); }
    void write(std::string_view bytes);
    /// Gives the file its name; without this call no file appears.
    void commit();
    [[noreturn]] void fail(const std::string &reason) const;

  private:
    std::string path_; ///< as the user gave it
    FileReplacement file_;
};

} // namespace quorbel
