#pragma once

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace quorbel {

/// A versioned JSON object in a file beside the settings file, for settings that the settings file
/// cannot hold. Replaces the file atomically, keeps unknown keys and sets a damaged file aside.
class SideFile {
  public:
    struct Kind {
        std::string name;     ///< file name without ".json"
        unsigned version = 1; ///< newest version to read, and the one to write
        /// Start and end of the warning about a damaged file, as in "The favourite presets were
        /// unreadable and were set aside as … No preset is a favourite now."
        std::string content;
        std::string consequence; ///< omitted by `update`, which rewrites the values
    };

    /// Reads the values of a document; a missing file is an empty object. Throws DecodingError
    /// without changing the values.
    using Decode = std::function<void(const nlohmann::json &)>;
    /// Writes the values into a document, which already has its version.
    using Encode = std::function<void(nlohmann::json &)>;

    SideFile(const std::string &settingsPath, Kind kind);
    ~SideFile();
    SideFile(SideFile &&) noexcept;
    SideFile &operator=(SideFile &&) noexcept;

    [[nodiscard]] const std::string &path() const { return path_; }

    /// Reads the file without changing it. Throws SettingsFileError like `read`, and DecodingError
    /// for a damaged file.
    void peek(const Decode &decode) const;

    /// Reads the file. Returns a warning for the user if a damaged file was set aside. Throws
    /// SettingsFileError for a file that cannot be read or is of a later version, without changing
    /// it.
    std::optional<std::string> read(const Decode &decode);

    /// Reads the file like `read`, so that `decode` can merge another program's changes, and
    /// replaces it with the document from `encode`. Other programs wait meanwhile. Returns a
    /// warning for the user if a damaged file was set aside. Throws SettingsFileError and
    /// FileReplacementError without changing the file.
    std::optional<std::string> update(const Decode &decode, const Encode &encode);

  private:
    [[nodiscard]] nlohmann::json readDocument() const;
    std::optional<std::string> readOrSetAside(const Decode &decode);

    Kind kind_;
    std::string path_;
    std::unique_ptr<nlohmann::json> document_; ///< as last read or written
};

} // namespace quorbel
