#include "score/xml_text.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace Score {

namespace {

constexpr int deepest = 256;  // a score needs about ten levels

/** How deep the elements go, skipping comments, CDATA, declarations and instructions. */
int depth (const std::string& xml)
{
    int level = 0, most = 0;
    for (std::size_t i = xml.find ('<'); i != std::string::npos && most <= deepest; i = xml.find ('<', i + 1))
    {
        auto skip = [&] (const char* open, const char* close) {
            if (xml.compare (i, std::strlen (open), open) != 0)
                return false;
            const auto end = xml.find (close, i);
            i = end == std::string::npos ? xml.size () : end;
            return true;
        };
        if (skip ("<!--", "-->") || skip ("<![CDATA[", "]]>") || skip ("<!", ">") || skip ("<?", "?>"))
            continue;
        if (i + 1 < xml.size () && xml[i + 1] == '/')
        {
            --level;
            continue;
        }
        const auto end = xml.find ('>', i);
        if (end == std::string::npos)
            break;
        if (xml[end - 1] != '/')
            most = std::max (most, ++level);
    }
    return most;
}

} // namespace

std::unique_ptr<juce::XmlElement> parseXml (const std::uint8_t* data, std::size_t size, std::string& error)
{
    if (size > static_cast<std::size_t> (std::numeric_limits<int>::max ()))
    {
        error = "too large for XML";
        return nullptr;
    }
    const juce::String text = juce::String::createStringFromData (data, static_cast<int> (size));
    if (depth (text.toStdString ()) > deepest)
    {
        error = "XML nested deeper than " + std::to_string (deepest) + " levels";
        return nullptr;
    }
    juce::XmlDocument document (text);
    auto root = document.getDocumentElement ();
    if (!root)
    {
        const auto why = document.getLastParseError ().toStdString ();
        error = "broken XML" + (why.empty () ? std::string () : ": " + why);
    }
    return root;
}

} // namespace Score
