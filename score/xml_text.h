// XML from a file's bytes, parsed with the toolkit's reader, within bounds it can't keep itself.
#pragma once

#include <juce_core/juce_core.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Score {

/**
 * The document element of XML in UTF-8 or UTF-16 (with its byte order mark),
 * or null with a message. The toolkit's reader descends one call a level, so
 * a document nested deeper than any score is refused before it is read.
 */
std::unique_ptr<juce::XmlElement> parseXml (const std::uint8_t* data, std::size_t size, std::string& error);

} // namespace Score
