#pragma once

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace quorbel {

/// One JSON object with a version in a file beside the settings file, for settings that the
/// settings file has no place for. The file is replaced as a whole, keys that this version does not
/// know are kept, and a damaged file is set aside.
class SideFile {
  public:
    struct Kind {
        std::string name;     ///< of the file, without ".json"
        unsigned version = 1; ///< the newest that this program reads, and the one it writes
        /// Content and consequence in the warning of a damaged file, as in "The favourite presets
        /// were unreadable and were set aside as … No preset is a favourite now."
        std::string content;
        std::string consequence; ///< left out by `update`, which writes the values again
    };

    /// Reads the values of a document. Throws DecodingError, and then leaves the values as they
    /// were. A missing file is read as an empty object.
    using Decode = std::function<void(const nlohmann::json &)>;
    /// Writes the values into a document; the version is written already.
    using Encode = std::function<void(nlohmann::json &)>;

    SideFile(const std::string &settingsPath, Kind kind);
    ~SideFile();
    SideFile(SideFile &&) noexcept;
    SideFile &operator=(SideFile &&) noexcept;

    [[nodiscard]] const std::string &path() const { return path_; }

    /// Reads the file and leaves it as it is. Throws SettingsFileError as `read`, and DecodingError
    /// for a damaged file.
    void peek(const Decode &decode) const;

    /// Reads the file. Returns a warning for the user if a damaged file had to be set aside.
    /// Throws SettingsFileError for a file that cannot be read or that a later version wrote: it is
    /// left as it is.
    std::optional<std::string> read(const Decode &decode);

    /// Reads the file as `read` does, so that another program's changes can be merged, and replaces
    /// it with what `encode` makes of the document. Other programs wait meanwhile. Returns a
    /// warning for the user if a damaged file had to be set aside. Throws SettingsFileError and
    /// FileReplacementError; the file is then as it was.
    std::optional<std::string> update(const Decode &decode, const Encode &encode);

  private:
    [[nodiscard]] nlohmann::json readDocument() const;
    std::optional<std::string> readOrSetAside(const Decode &decode);

    Kind kind_;
    std::string path_;
    std::unique_ptr<nlohmann::json> document_; ///< as last read or written
};

} // namespace quorbel
