// The sound's way out: resampled by libsoxr, written by libsndfile.
#pragma once

#include <string>
#include <vector>

namespace Voice {

constexpr int outputRate = 44100;

/** Writes `sound` (at `from` Hz) as a mono 16-bit WAV of `frames` samples at `to` Hz, its peak
    scaled to `peak` of full scale (silence stays silence). Whole or not at all: written beside
    `path` under a temporary name and renamed into place. Throws std::runtime_error naming the
    file and the fault. */
void writeWav (const std::string& path, const std::vector<float>& sound, int from, int to, std::size_t frames,
               float peak);

/** A WAV file's samples, channels mixed down, and its rate. Throws std::runtime_error naming the file. */
std::vector<float> readWav (const std::string& path, int& rate);

} // namespace Voice
