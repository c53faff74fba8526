#include "score/mxl_container.h"

#include "score/xml_text.h"

namespace Score {

namespace {

constexpr std::size_t limit = 64u << 20;  // as for a file on disk

bool entry (juce::ZipFile& zip, const juce::String& name, std::vector<std::uint8_t>& out)
{
    const int index = zip.getIndexOfFileName (name);
    if (index < 0)
        return false;
    std::unique_ptr<juce::InputStream> in (zip.createStreamForEntry (index));
    if (!in)
        return false;
    juce::MemoryBlock block;
    // One byte more than allowed tells a file that is too large from one that just fits.
    in->readIntoMemoryBlock (block, static_cast<ssize_t> (limit + 1));
    if (block.getSize () > limit)
        return false;
    const auto* bytes = static_cast<const std::uint8_t*> (block.getData ());
    out.assign (bytes, bytes + block.getSize ());
    return true;
}

} // namespace

bool unpackMxl (const std::vector<std::uint8_t>& bytes, std::vector<std::uint8_t>& score, std::string& error)
{
    juce::MemoryInputStream stream (bytes.data (), bytes.size (), false);
    juce::ZipFile zip (stream);
    if (zip.getNumEntries () == 0)
    {
        error = "not a compressed MusicXML score (no zip entries)";
        return false;
    }
    std::vector<std::uint8_t> container;
    if (!entry (zip, "META-INF/container.xml", container))
    {
        error = "a zip without a score (no META-INF/container.xml)";
        return false;
    }
    const auto root = parseXml (container.data (), container.size (), error);
    if (!root)
    {
        error = "META-INF/container.xml: " + error;
        return false;
    }
    const juce::XmlElement* files = root->getChildByName ("rootfiles");
    const juce::XmlElement* first = files ? files->getChildByName ("rootfile") : nullptr;
    const juce::String path = first ? first->getStringAttribute ("full-path") : juce::String ();
    if (path.isEmpty ())
    {
        error = "META-INF/container.xml names no score";
        return false;
    }
    if (!entry (zip, path, score))
    {
        error = "META-INF/container.xml points to " + path.toStdString () + ", which the zip does not hold";
        return false;
    }
    return true;
}

} // namespace Score
