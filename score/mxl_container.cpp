#include "score/mxl_container.h"

#include "score/file_bytes.h"
#include "score/xml_text.h"
#include "score/zip_archive.h"

namespace Score {

bool unpackMxl (const std::vector<std::uint8_t>& bytes, std::vector<std::uint8_t>& score, std::string& error)
{
    ZipArchive zip;
    if (!zip.open (bytes.data (), bytes.size (), error))
    {
        error = "not a compressed MusicXML score: " + error;
        return false;
    }
    if (zip.entryCount () == 0)
    {
        error = "not a compressed MusicXML score (no zip entries)";
        return false;
    }
    // The entry, or why it can't be had: missing, too large, packed in a way not read, or damaged.
    auto entry = [&] (const ZipEntry* e, std::vector<std::uint8_t>& out) {
        if (e && zip.extract (*e, largestFile, out, error))
            return true;
        if (e)
            error = shortened (e->name) + " in the zip " + error;
        return false;
    };
    std::vector<std::uint8_t> container;
    const ZipEntry* listed = zip.find ("META-INF/container.xml");
    if (!entry (listed, container))
    {
        if (!listed)
            error = "a zip without a score (no META-INF/container.xml)";
        return false;
    }
    pugi::xml_document document;
    if (!parseXml (container.data (), container.size (), document, error))
    {
        error = "META-INF/container.xml: " + error;
        return false;
    }
    const std::string path =
        document.document_element ().child ("rootfiles").child ("rootfile").attribute ("full-path").value ();
    if (path.empty ())
    {
        error = "META-INF/container.xml names no score";
        return false;
    }
    const ZipEntry* named = zip.find (path);
    if (!entry (named, score))
    {
        if (!named)
            error = "META-INF/container.xml points to " + shortened (path) + ", which the zip does not hold";
        return false;
    }
    return true;
}

} // namespace Score
