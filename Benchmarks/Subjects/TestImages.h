#pragma once

#include <string>

/// The bytes of a 1920×1080 JPEG as an ad's image is: gradients, shapes and text, some 200 to 400 KB.
/// Images of different numbers differ.
[[nodiscard]] std::string adImage(int number);
