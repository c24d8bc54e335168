#pragma once

#include <memory>
#include <span>
#include <string>
#include <utility>

#include "platform/content_reader.h"
#include "platform/file_service.h"

namespace coffrelune {

/// Reads whole files of a system in memory.
class MemoryContents final : public ContentReader {
  public:
    explicit MemoryContents(FileService& files) : files_(files) {}

    Status open(const std::string& path, LinkRule, std::unique_ptr<Content>& content) override {
        std::string bytes;
        Status read = files_.readWhole(path, std::uint64_t{1} << 30, bytes);
        if (read.ok()) content = std::make_unique<Text>(std::move(bytes));
        return read;
    }

  private:
    class Text final : public Content {
      public:
        explicit Text(std::string text) : text_(std::move(text)) {}
        Status read(std::span<char> buffer, std::size_t& length) override {
            length = text_.copy(buffer.data(), buffer.size(), position_);
            position_ += length;
            return {};
        }

      private:
        std::string text_;
        std::size_t position_ = 0;
    };

    FileService& files_;
};

}  // namespace coffrelune
