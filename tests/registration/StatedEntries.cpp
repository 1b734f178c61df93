#include "tests/registration/StatedEntries.h"

#include "framework/interfaces/ClassIds.h"
#include "platform/Utf8.h"

#include <algorithm>
#include <string_view>

namespace vant {

namespace {

constexpr StatedClass statedClasses[] = {
    {L"ParameterWriter", 101, L"{CD14CC20-EF6F-42DE-9172-D5DDEEF2D45C}"},
    {L"PropertySetter", 102, L"{CD14CC20-EF6F-42DE-9172-D5DDEEF2D23D}"},
    {L"CompositeCommand", 103, L"{BE598987-3A37-4BDB-BA7D-5246EBD3F6C9}"},
    {L"StartConditionChecker", 104, L"{7828E1BC-5C77-47cc-AE48-67A1F45E56EC}"},
    {L"MessageDisplayer", 105, L"{E2DBCBB4-A640-45d1-AE0B-183C7ACDC912}"},
    {L"ErrorDisplayer", 106, L"{F920F82B-8BDD-4f6f-B907-4D572A30BD4A}"},
    {L"HelpDisplayer", 107, L"{3D038A1D-5F8D-43a9-B6A6-CA749BFDC33C}"},
    {L"StopConditionMonitor", 108, L"{F0A5FACA-B94A-4511-8CBA-0178EEE509F1}"},
    {L"MonitorUpdater", 109, L"{4EDA13F9-4769-459c-A3C8-3F0723CD0B3C}"},
    {L"CommandTerminator", 110, L"{E6F7F7B7-C398-4c33-A9AC-87E839E74CD9}"},
    {L"Timer", 111, L"{2A3BEB3D-5F5A-4765-A728-83E5DC668B1F}"},
    {L"ThrottleAdjuster", 112, L"{91BCC157-0A4B-4420-933B-ED33DF7B6EE5}"},
    {L"FaultArrayChecker", 113, L"{A177EC7B-206B-477d-ACAC-6879DAFE9499}"},
    {L"ParameterLoader", 114, L"{77B01702-0B37-4870-9355-6F474A1F36D1}"},
    {L"Calculator", 115, L"{1111BFC7-28AF-4b67-B426-F20AEB66F782}"},
    {L"ParameterSampler", 116, L"{C0469AE7-0D82-42cb-B51B-C74E1CC573B0}"},
    {L"StringFormatter", 117, L"{A5BB457B-F7B3-47a6-8B8E-EAC2753354AF}"},
    {L"DataStoreWriter", 118, L"{A5869103-14CC-49c6-9E8E-9D9861563ADE}"},
    {L"DiagnosticTestInstruction", 150, L"{A96AA96E-4EF3-41B8-B5CD-49EA81A6D7E4}"},
    {L"EGRValvePositionAdjuster", 201, L"{B65AD71C-EC5E-4ab8-BCE1-F3F4C6319403}"},
    {L"SampledThrottleAdjuster", 202, L"{EEDCB164-26E6-48cf-B445-0BE75927E8A9}"},
};

constexpr std::string_view script = R"(HKCR
{
	VantCommands.CompositeCommand.1 = s 'CompositeCommand Class'
	{
		CLSID = s '{BE598987-3A37-4BDB-BA7D-5246EBD3F6C9}'
	}
	VantCommands.CompositeCommand = s 'CompositeCommand Class'
	{
		CLSID = s '{BE598987-3A37-4BDB-BA7D-5246EBD3F6C9}'
		CurVer = s 'VantCommands.CompositeCommand.1'
	}
	NoRemove CLSID
	{
		ForceRemove {BE598987-3A37-4BDB-BA7D-5246EBD3F6C9} = s 'CompositeCommand Class'
		{
			ProgID = s 'VantCommands.CompositeCommand.1'
			VersionIndependentProgID = s 'VantCommands.CompositeCommand'
			InprocServer32 = s '%MODULE%'
			{
				val ThreadingModel = s 'Free'
			}
			'TypeLib' = s '{3BE2B2AE-1EB4-4FE6-BCBD-F45D8D79FE5D}'
		}
	}
}
)";

std::string Replaced(std::string text, std::string_view old, std::string_view replacement) {
    for (std::size_t at = 0; (at = text.find(old, at)) != std::string::npos; at += replacement.size())
        text.replace(at, old.size(), replacement);
    return text;
}

} // namespace

std::span<const StatedClass> StatedClasses() {
    return statedClasses;
}

std::wstring ProgId(const StatedClass& stated) {
    return std::wstring(L"VantCommands.") + stated.name;
}

Subtree EntriesOf(const StatedClass& stated, const std::filesystem::path& module) {
    const std::wstring progId = ProgId(stated);
    const std::wstring versioned = progId + L".1";
    const std::wstring description = std::wstring(stated.name) + L" Class";
    const std::wstring classKey = std::wstring(L"CLSID\\") + stated.clsid;
    return {
        {versioned, {{L"", description}}},
        {versioned + L"\\CLSID", {{L"", stated.clsid}}},
        {progId, {{L"", description}}},
        {progId + L"\\CLSID", {{L"", stated.clsid}}},
        {progId + L"\\CurVer", {{L"", versioned}}},
        {classKey, {{L"", description}}},
        {classKey + L"\\ProgID", {{L"", versioned}}},
        {classKey + L"\\VersionIndependentProgID", {{L"", progId}}},
        {classKey + L"\\InprocServer32", {{L"", ToWide(PathToUtf8(module))}, {L"ThreadingModel", L"Free"}}},
        {classKey + L"\\TypeLib", {{L"", libraryIdText}}},
    };
}

Subtree EntriesOfAll(const std::filesystem::path& module) {
    Subtree all = TypeLibraryEntries(module);
    for (const StatedClass& stated : StatedClasses())
        all.merge(EntriesOf(stated, module));
    return all;
}

Subtree ClassEntries(Subtree entries) {
    std::erase_if(entries, [](const auto& entry) { return entry.first.starts_with(L"TypeLib\\"); });
    return entries;
}

std::string ScriptOf(const StatedClass& stated) {
    return Replaced(Replaced(std::string(script), "CompositeCommand", ToUtf8(stated.name)),
                    "{BE598987-3A37-4BDB-BA7D-5246EBD3F6C9}", ToUtf8(stated.clsid));
}

} // namespace vant
