#pragma once

#include <string>

/// The bytes of a 1920×1080 JPEG as an ad's image is: gradients, shapes and text, some 200 to 400 KB.
/// Images of different numbers differ.
[[nodiscard]] std::string adImage(int number);

/// From here on a decoded image gets memory from the system and gives it back, as the first image of a host
/// does; otherwise each round would use the memory of the one before. Has no way back in this process.
void takeFreshMemory();
