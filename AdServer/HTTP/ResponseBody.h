#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace adserver
{

/// The bytes of a response that are not held in memory. Owned by its response, read by the connection's
/// thread.
class ResponseBody
{
public:
    virtual ~ResponseBody() = default;

    [[nodiscard]] virtual std::uint64_t size() const = 0;
    /// Reads up to `capacity` bytes from `offset` on; 0 when there are none or the medium fails.
    [[nodiscard]] virtual std::size_t read(std::uint64_t offset, char* into, std::size_t capacity) const = 0;

    /// Whether each piece goes out at once, since the next one may come much later.
    [[nodiscard]] virtual bool isLive() const { return false; }
};

/// A part of an open file. Nothing when the file cannot be opened or is no regular one.
class FileBody final : public ResponseBody
{
public:
    [[nodiscard]] static std::shared_ptr<FileBody> open(const std::filesystem::path& file);
    ~FileBody() override;
    FileBody(const FileBody&) = delete;
    FileBody& operator=(const FileBody&) = delete;

    /// From now on the body is this part of the file, which must lie within it.
    void narrow(std::uint64_t first, std::uint64_t size);
    /// Changes whenever the file's length or time of change does; in double quotes.
    [[nodiscard]] std::string entityTag() const;

    [[nodiscard]] std::uint64_t size() const override { return m_size; }

    [[nodiscard]] std::size_t read(std::uint64_t offset, char* into, std::size_t capacity) const override;

private:
    FileBody(int descriptor, std::uint64_t size, std::int64_t changed);

    const int m_descriptor;
    const std::uint64_t m_fileSize;
    const std::int64_t m_changed;
    std::uint64_t m_first = 0;
    std::uint64_t m_size;
};

/// A JSON object of any size, made while it is read: {"filler":"aaaa…"}.
class FillerBody final : public ResponseBody
{
public:
    static constexpr std::uint64_t minimum = 16;
    explicit FillerBody(std::uint64_t size);

    [[nodiscard]] std::uint64_t size() const override { return m_size; }

    [[nodiscard]] std::size_t read(std::uint64_t offset, char* into, std::size_t capacity) const override;

private:
    const std::uint64_t m_size;
};

} // namespace adserver
