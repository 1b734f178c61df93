#include "commands/Calculator.h"
#include "commands/CommandTerminator.h"
#include "commands/CompositeCommand.h"
#include "commands/DataStoreWriter.h"
#include "commands/DiagnosticTestInstruction.h"
#include "commands/EGRValvePositionAdjuster.h"
#include "commands/ErrorDisplayer.h"
#include "commands/FaultArrayChecker.h"
#include "commands/HelpDisplayer.h"
#include "commands/MessageDisplayer.h"
#include "commands/MonitorUpdater.h"
#include "commands/ParameterLoader.h"
#include "commands/ParameterSampler.h"
#include "commands/ParameterWriter.h"
#include "commands/PropertySetter.h"
#include "commands/SampledThrottleAdjuster.h"
#include "commands/StartConditionChecker.h"
#include "commands/StopConditionMonitor.h"
#include "commands/StringFormatter.h"
#include "commands/ThrottleAdjuster.h"
#include "commands/Timer.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vant {

namespace {

using Table = std::vector<std::wstring>;

/// A table as text: rows in order, "name", or "name/alternative", with "?" behind the optional ones.
Table Rows(PropertyTable table) {
    Table rows;
    for (const PropertyRow& row : table) {
        rows.emplace_back(row.name);
        if (row.alternativeName)
            rows.back().append(L"/").append(row.alternativeName);
        if (!row.required)
            rows.back() += L'?';
    }
    return rows;
}

TEST(PropertyTables, Calculator) {
    EXPECT_EQ((Table{L"dsSourceA/sourceA", L"dsSourceB?", L"sourceB?", L"dsResult", L"operation"}),
              Rows(CCalculator::properties));
}

TEST(PropertyTables, CommandTerminator) {
    EXPECT_EQ((Table{L"commandID"}), Rows(CCommandTerminator::properties));
}

TEST(PropertyTables, CompositeCommand) {
    EXPECT_EQ((Table{L"commandIDList"}), Rows(CCompositeCommand::properties));
}

TEST(PropertyTables, DataStoreWriter) {
    EXPECT_EQ((Table{L"dsLocation", L"value"}), Rows(CDataStoreWriter::properties));
}

TEST(PropertyTables, DiagnosticTestInstruction) {
    EXPECT_EQ((Table{L"dsValue"}), Rows(CDiagnosticTestInstruction::properties));
}

TEST(PropertyTables, EGRValvePositionAdjuster) {
    EXPECT_EQ((Table{L"failTransition"}), Rows(CEGRValvePositionAdjuster::properties));
}

TEST(PropertyTables, ErrorDisplayer) {
    EXPECT_EQ((Table{L"dsString"}), Rows(CErrorDisplayer::properties));
}

TEST(PropertyTables, FaultArrayChecker) {
    EXPECT_EQ((Table{L"arrayID", L"successTransitionID?", L"failTransitionID?", L"dsFaultCode?"}),
              Rows(CFaultArrayChecker::properties));
}

TEST(PropertyTables, HelpDisplayer) {
    EXPECT_EQ((Table{L"helpFile", L"helpIndex"}), Rows(CHelpDisplayer::properties));
}

TEST(PropertyTables, MessageDisplayer) {
    EXPECT_EQ((Table{L"dsString"}), Rows(CMessageDisplayer::properties));
}

TEST(PropertyTables, MonitorUpdater) {
    EXPECT_EQ((Table{L"parameterIDs", L"dsBaseName", L"monitorID"}), Rows(CMonitorUpdater::properties));
}

TEST(PropertyTables, ParameterLoader) {
    EXPECT_EQ((Table{L"parameterID", L"dsLocation"}), Rows(CParameterLoader::properties));
}

TEST(PropertyTables, ParameterSampler) {
    EXPECT_EQ(
        (Table{L"parameterID", L"period", L"numSamples", L"dsTarget", L"completionTransition?", L"delay?"}),
        Rows(CParameterSampler::properties));
}

TEST(PropertyTables, ParameterWriter) {
    EXPECT_EQ((Table{L"parameterID/dsParameterID", L"value/dsValue"}), Rows(CParameterWriter::properties));
}

TEST(PropertyTables, PropertySetter) {
    EXPECT_EQ((Table{L"propertyName", L"componentID", L"pValue?", L"value?", L"dsValue?"}),
              Rows(CPropertySetter::properties));
}

TEST(PropertyTables, SampledThrottleAdjuster) {
    EXPECT_EQ((Table{L"successTransition", L"failTransition"}), Rows(CSampledThrottleAdjuster::properties));
}

TEST(PropertyTables, StartConditionChecker) {
    EXPECT_EQ((Table{L"dsSetID", L"dsFailMessage?", L"validTransitionID?", L"invalidTransitionID?"}),
              Rows(CStartConditionChecker::properties));
}

TEST(PropertyTables, StopConditionMonitor) {
    EXPECT_EQ((Table{L"dsSetID", L"failTransitionID", L"dsMessageID"}),
              Rows(CStopConditionMonitor::properties));
}

TEST(PropertyTables, StringFormatter) {
    EXPECT_EQ((Table{L"dsSourceString", L"dsTargetString", L"operation", L"roundLength?"}),
              Rows(CStringFormatter::properties));
}

TEST(PropertyTables, ThrottleAdjuster) {
    EXPECT_EQ((Table{L"successTransition", L"failTransition"}), Rows(CThrottleAdjuster::properties));
}

TEST(PropertyTables, Timer) {
    EXPECT_EQ((Table{L"length/dsLength", L"dsBase", L"startCommandID?", L"tickCommandID?", L"stopCommandID?",
                     L"type?"}),
              Rows(CTimer::properties));
}

TEST(ResourceNumbers, AreThoseOfTheClassTable) {
    EXPECT_EQ(101u, CParameterWriter::resource);
    EXPECT_EQ(102u, CPropertySetter::resource);
    EXPECT_EQ(103u, CCompositeCommand::resource);
    EXPECT_EQ(104u, CStartConditionChecker::resource);
    EXPECT_EQ(105u, CMessageDisplayer::resource);
    EXPECT_EQ(106u, CErrorDisplayer::resource);
    EXPECT_EQ(107u, CHelpDisplayer::resource);
    EXPECT_EQ(108u, CStopConditionMonitor::resource);
    EXPECT_EQ(109u, CMonitorUpdater::resource);
    EXPECT_EQ(110u, CCommandTerminator::resource);
    EXPECT_EQ(111u, CTimer::resource);
    EXPECT_EQ(112u, CThrottleAdjuster::resource);
    EXPECT_EQ(113u, CFaultArrayChecker::resource);
    EXPECT_EQ(114u, CParameterLoader::resource);
    EXPECT_EQ(115u, CCalculator::resource);
    EXPECT_EQ(116u, CParameterSampler::resource);
    EXPECT_EQ(117u, CStringFormatter::resource);
    EXPECT_EQ(118u, CDataStoreWriter::resource);
    EXPECT_EQ(150u, CDiagnosticTestInstruction::resource);
    EXPECT_EQ(201u, CEGRValvePositionAdjuster::resource);
    EXPECT_EQ(202u, CSampledThrottleAdjuster::resource);
}

} // namespace

} // namespace vant
