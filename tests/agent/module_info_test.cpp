// The bundle's Contents/Resources/moduleinfo.json against what the loaded module's factory
// reports: a host that scans bundles without loading them must learn the same class as
// one that loads it, and both the identity hosts know it by.
#include "workbench/loader/module_loader.h"

#include <gtest/gtest.h>
#include <juce_core/juce_core.h>

#include <fstream>
#include <sstream>

using namespace Steinberg;

namespace {

juce::var readModuleInfo ()
{
    std::ifstream in (CANTORELA_BUNDLE_DIR "/Contents/Resources/moduleinfo.json", std::ios::binary);
    std::stringstream text;
    text << in.rdbuf ();
    return juce::JSON::parse (juce::String::fromUTF8 (text.str ().c_str ()));
}

std::string asJson (const juce::var& value) { return juce::JSON::toString (value, true).toStdString (); }

TEST (ModuleInfo, SaysWhatTheFactoryReports)
{
    Sim::LoadedModule module (CANTORELA_MODULE_PATH);
    ASSERT_TRUE (module.ok ()) << module.error ();
    ASSERT_TRUE (module.bundleEntry ());
    IPluginFactory* factory = module.getPluginFactory ();
    ASSERT_NE (factory, nullptr);
    IPluginFactory2* factory2 = nullptr;
    ASSERT_EQ (factory->queryInterface (IPluginFactory2::iid, reinterpret_cast<void**> (&factory2)), kResultOk);
    PFactoryInfo vendor {};
    PClassInfo2 info {};
    EXPECT_EQ (factory->getFactoryInfo (&vendor), kResultOk);
    EXPECT_EQ (factory2->getClassInfo2 (0, &info), kResultOk);
    const int classes = factory->countClasses ();
    factory2->release ();
    factory->release ();
    EXPECT_TRUE (module.bundleExit ());
    char8 cid[33] = {};
    FUID::fromTUID (info.cid).toString (cid);

    const juce::var file = readModuleInfo ();
    ASSERT_TRUE (file.isObject ()) << "moduleinfo.json is no JSON object";
    const juce::var& factoryInFile = file["Factory Info"];
    const juce::var& classInFile = file["Classes"][0];
    const auto flag = [&] (int32 bit) { return juce::var ((vendor.flags & bit) != 0); };
    const struct
    {
        const char* key;
        juce::var inFile, reported;
    } agree[] = {
        {"Vendor", factoryInFile["Vendor"], vendor.vendor},
        {"URL", factoryInFile["URL"], vendor.url},
        {"E-Mail", factoryInFile["E-Mail"], vendor.email},
        {"Unicode", factoryInFile["Flags"]["Unicode"], flag (PFactoryInfo::kUnicode)},
        {"Classes Discardable", factoryInFile["Flags"]["Classes Discardable"], flag (PFactoryInfo::kClassesDiscardable)},
        {"Component Non Discardable", factoryInFile["Flags"]["Component Non Discardable"],
         flag (PFactoryInfo::kComponentNonDiscardable)},
        {"number of classes", file["Classes"].size (), classes},
        {"CID", classInFile["CID"], cid},
        {"Category", classInFile["Category"], info.category},
        {"Name", classInFile["Name"], info.name},
        {"class Vendor", classInFile["Vendor"], info.vendor},
        {"class Version", classInFile["Version"], info.version},
        {"SDKVersion", classInFile["SDKVersion"], info.sdkVersion},
        {"Class Flags", classInFile["Class Flags"], static_cast<int> (info.classFlags)},
        {"Cardinality", classInFile["Cardinality"], info.cardinality},
        {"Sub Categories", classInFile["Sub Categories"].size (), info.subCategories[0] == 0 ? 0 : 1},
        // The module's version is the project's, and the class's the same.
        {"Version", file["Version"], CANTORELA_VERSION},
        {"class Version", classInFile["Version"], CANTORELA_VERSION},
    };
    for (const auto& row : agree)
        EXPECT_EQ (asJson (row.inFile), asJson (row.reported)) << row.key;

    // Hosts know the class by these; the project's version number follows the class's.
    EXPECT_EQ (std::string (cid), "13EA3FBBE8FB4FC5AF9D5329A091EB19");
    EXPECT_EQ (std::string (vendor.vendor), "Zelmor Corporation");
    EXPECT_EQ (vendor.flags, 24);
    EXPECT_EQ (std::string (info.category), "Service");
    EXPECT_EQ (std::string (info.name), "Cantorela Beta");
    EXPECT_EQ (info.cardinality, 1);
    EXPECT_EQ (std::string (info.version), "1.1.3");
    EXPECT_EQ (std::string (info.sdkVersion), "4.2");
}

} // namespace
