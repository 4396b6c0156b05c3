#pragma once
// One reader for each format. Each takes the file's bytes and raises EImageError.
#include "engine/images/ImageData.h"

[[nodiscard]] bool IsJpeg(std::string_view file);
[[nodiscard]] bool IsPng(std::string_view file);
[[nodiscard]] bool IsTiff(std::string_view file);

/// The file's own data where PDF can hold it; what PDF can't hold is decoded or refused.
[[nodiscard]] TImageData ReadJpeg(std::string file);
[[nodiscard]] TImageData ReadPng(const std::string& file);
/// The first page.
[[nodiscard]] TImageData ReadTiff(const std::string& file);
/// Whatever else Qt and its plugins read, the first frame.
[[nodiscard]] TImageData ReadOther(const std::string& file);
