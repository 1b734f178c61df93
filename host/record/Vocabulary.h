#pragma once

#include <array>

namespace vant::host {

// The names that occur in the records of a journal. All code that writes or reads records uses these
// constants; recordKinds lists which of them belong together.

/// The host object that was called, or `Runner` for an event of the run.
namespace service {

inline constexpr const char* Runner = "Runner";

inline constexpr const char* CommandRunner = "CommandRunner";
inline constexpr const char* ComponentService = "ComponentService";
inline constexpr const char* ConditionSet = "ConditionSet";
inline constexpr const char* Connection = "Connection";
inline constexpr const char* Context = "Context";
inline constexpr const char* Controller = "Controller";
inline constexpr const char* DataStore = "DataStore";
inline constexpr const char* Directory = "Directory";
inline constexpr const char* ECMServices = "ECMServices";
inline constexpr const char* FaultArray = "FaultArray";
inline constexpr const char* FaultField = "FaultField";
inline constexpr const char* FaultRecord = "FaultRecord";
inline constexpr const char* FaultRecordList = "FaultRecordList";
inline constexpr const char* Parameter = "Parameter";
inline constexpr const char* ParameterService = "ParameterService";
inline constexpr const char* PresentationService = "PresentationService";
inline constexpr const char* ProcedureController = "ProcedureController";
inline constexpr const char* ProtocolSource = "ProtocolSource";
inline constexpr const char* ProtocolSourceA = "ProtocolSourceA";
inline constexpr const char* ProtocolSourceB = "ProtocolSourceB";
inline constexpr const char* ProtocolSourceC = "ProtocolSourceC";
inline constexpr const char* ProtocolSourceD = "ProtocolSourceD";
inline constexpr const char* Service3 = "Service3";
inline constexpr const char* Service7 = "Service7";
inline constexpr const char* Session = "Session";
inline constexpr const char* SessionItem = "SessionItem";
inline constexpr const char* SessionManager = "SessionManager";
inline constexpr const char* ThreadService = "ThreadService";
inline constexpr const char* Unit = "Unit";
inline constexpr const char* UnitsTable = "UnitsTable";

} // namespace service

/// Events of the run, which the runner records.
namespace event {

inline constexpr const char* CommandCreated = "CommandCreated";
inline constexpr const char* CommandEnded = "CommandEnded";
inline constexpr const char* CommandInitialized = "CommandInitialized";
inline constexpr const char* ConditionsGiven = "ConditionsGiven";
inline constexpr const char* DataGiven = "DataGiven";
inline constexpr const char* DataLeft = "DataLeft";
inline constexpr const char* FinallyStarted = "FinallyStarted";
inline constexpr const char* Measured = "Measured";
inline constexpr const char* ParameterGiven = "ParameterGiven";
inline constexpr const char* ParameterLeft = "ParameterLeft";
inline constexpr const char* ProcedureEnded = "ProcedureEnded";
inline constexpr const char* ProcedureStarted = "ProcedureStarted";
inline constexpr const char* PromptClosed = "PromptClosed";
inline constexpr const char* PromptShown = "PromptShown";
inline constexpr const char* PropertySet = "PropertySet";
inline constexpr const char* ResultMissing = "ResultMissing";
inline constexpr const char* StepEntered = "StepEntered";
inline constexpr const char* StepRetried = "StepRetried";
inline constexpr const char* StepTimedOut = "StepTimedOut";
inline constexpr const char* TagGiven = "TagGiven";
inline constexpr const char* ThreadEnded = "ThreadEnded";
inline constexpr const char* TransitionFollowed = "TransitionFollowed";
inline constexpr const char* WaitStarted = "WaitStarted";

} // namespace event

/// Operations of services, which commands call.
namespace operation {

inline constexpr const char* CloseECM = "CloseECM";
inline constexpr const char* Evaluate = "Evaluate";
inline constexpr const char* GetA = "GetA";
inline constexpr const char* GetB = "GetB";
inline constexpr const char* GetC = "GetC";
inline constexpr const char* GetConnection = "GetConnection";
inline constexpr const char* GetD = "GetD";
inline constexpr const char* GetDirectory = "GetDirectory";
inline constexpr const char* GetFailureKey = "GetFailureKey";
inline constexpr const char* GetParameter = "GetParameter";
inline constexpr const char* GetProtocolSource = "GetProtocolSource";
inline constexpr const char* GetUnit = "GetUnit";
inline constexpr const char* GetUnits = "GetUnits";
inline constexpr const char* GetValue = "GetValue";
inline constexpr const char* OpenECM = "OpenECM";
inline constexpr const char* Operation11 = "Operation11";
inline constexpr const char* Operation12 = "Operation12";
inline constexpr const char* PersistentCommandStopped = "PersistentCommandStopped";
inline constexpr const char* ReadParameter = "ReadParameter";
inline constexpr const char* Register = "Register";
inline constexpr const char* RegisterCallback = "RegisterCallback";
inline constexpr const char* RunCommand = "RunCommand";
inline constexpr const char* RunCommandFromThread = "RunCommandFromThread";
inline constexpr const char* SetComponentProperty = "SetComponentProperty";
inline constexpr const char* SetParameter = "SetParameter";
inline constexpr const char* SetTransition = "SetTransition";
inline constexpr const char* SetValue = "SetValue";
inline constexpr const char* ShowInstruction = "ShowInstruction";
inline constexpr const char* TerminateCommand = "TerminateCommand";
inline constexpr const char* UnregisterCallback = "UnregisterCallback";
inline constexpr const char* get_CommandRunner = "get_CommandRunner";
inline constexpr const char* get_ComponentService = "get_ComponentService";
inline constexpr const char* get_ConnectionIdentifier = "get_ConnectionIdentifier";
inline constexpr const char* get_Count = "get_Count";
inline constexpr const char* get_DataStore = "get_DataStore";
inline constexpr const char* get_Item = "get_Item";
inline constexpr const char* get_Kind = "get_Kind";
inline constexpr const char* get_Name = "get_Name";
inline constexpr const char* get_ParameterService = "get_ParameterService";
inline constexpr const char* get_PresentationService = "get_PresentationService";
inline constexpr const char* get_ProcedureController = "get_ProcedureController";
inline constexpr const char* get_Records = "get_Records";
inline constexpr const char* get_Service3 = "get_Service3";
inline constexpr const char* get_Service7 = "get_Service7";
inline constexpr const char* get_Text = "get_Text";
inline constexpr const char* get_ThreadService = "get_ThreadService";
inline constexpr const char* get_UnitsKey = "get_UnitsKey";
inline constexpr const char* get_Value = "get_Value";

} // namespace operation

namespace argument {

inline constexpr const char* allMet = "allMet";
inline constexpr const char* answer = "answer";
inline constexpr const char* at = "at";
inline constexpr const char* attempt = "attempt";
inline constexpr const char* author = "author";
inline constexpr const char* buttons = "buttons";
inline constexpr const char* by = "by";
inline constexpr const char* caller = "caller";
inline constexpr const char* caption = "caption";
inline constexpr const char* className = "class";
inline constexpr const char* commandId = "commandId";
inline constexpr const char* componentId = "componentId";
inline constexpr const char* conditions = "conditions";
inline constexpr const char* cookie = "cookie";
inline constexpr const char* count = "count";
inline constexpr const char* data = "data";
inline constexpr const char* description = "description";
inline constexpr const char* ecmId = "ecmId";
inline constexpr const char* failed = "failed";
inline constexpr const char* from = "from";
inline constexpr const char* handle = "handle";
inline constexpr const char* id = "id";
inline constexpr const char* index = "index";
inline constexpr const char* key = "key";
inline constexpr const char* kind = "kind";
inline constexpr const char* limit = "limit";
inline constexpr const char* limits = "limits";
inline constexpr const char* met = "met";
inline constexpr const char* name = "name";
inline constexpr const char* parameter = "parameter";
inline constexpr const char* phase = "phase";
inline constexpr const char* reason = "reason";
inline constexpr const char* revision = "revision";
inline constexpr const char* step = "step";
inline constexpr const char* text = "text";
inline constexpr const char* threadName = "threadName";
inline constexpr const char* to = "to";
inline constexpr const char* transitionId = "transitionId";
inline constexpr const char* units = "units";
inline constexpr const char* unitsKey = "unitsKey";
inline constexpr const char* value = "value";
inline constexpr const char* verdict = "verdict";
inline constexpr const char* waitsFor = "for";
inline constexpr const char* was = "was";

} // namespace argument

/// A kind of record.
struct RecordKind {
    const char* service;
    const char* operation; ///< Of a service, or an event.
    /// In the order in which they are recorded, then null. A call that fails may lack some.
    std::array<const char*, 9> arguments{};
};

/// Every kind of record that a run can leave, but for the calls of operations that the host does not
/// implement.
inline constexpr RecordKind recordKinds[] = {
    {service::Runner,
     event::ProcedureStarted,
     {argument::name, argument::description, argument::revision, argument::author}},
    {service::Runner, event::TagGiven, {argument::name, argument::value}},
    {service::Runner, event::ParameterGiven, {argument::id, argument::name, argument::units}},
    {service::Runner, event::DataGiven, {argument::name, argument::value}},
    {service::Runner, event::ConditionsGiven, {argument::name, argument::conditions}},
    {service::Runner, event::StepEntered, {argument::step, argument::description}},
    {service::Runner, event::CommandCreated, {argument::className}},
    {service::Runner, event::CommandInitialized},
    {service::Runner, event::PropertySet, {argument::name, argument::value}},
    {service::Runner, event::CommandEnded, {argument::className, argument::caller, argument::phase}},
    {service::Runner, event::ResultMissing, {argument::name, argument::value}},
    {service::Runner, event::ThreadEnded, {argument::cookie}},
    {service::Runner,
     event::PromptShown,
     {argument::kind, argument::caption, argument::text, argument::buttons, argument::units, argument::limits,
      argument::data}},
    {service::Runner, event::PromptClosed, {argument::answer, argument::by}},
    {service::Runner, event::WaitStarted, {argument::waitsFor, argument::limit}},
    {service::Runner, event::StepTimedOut, {argument::step, argument::reason}},
    {service::Runner, event::StepRetried, {argument::step, argument::attempt, argument::reason}},
    {service::Runner,
     event::TransitionFollowed,
     {argument::from, argument::to, argument::key, argument::transitionId}},
    {service::Runner, event::FinallyStarted},
    {service::Runner, event::DataLeft, {argument::name, argument::value}},
    {service::Runner,
     event::Measured,
     {argument::name, argument::data, argument::value, argument::units, argument::limits, argument::verdict,
      argument::at, argument::step, argument::description}},
    {service::Runner, event::ParameterLeft, {argument::id, argument::name, argument::value, argument::was}},
    {service::Runner, event::ProcedureEnded, {argument::verdict, argument::reason}},

    {service::Context, operation::get_ProcedureController},
    {service::Context, operation::get_CommandRunner},
    {service::Context, operation::get_ComponentService},
    {service::Context, operation::get_Service7},
    {service::Context, operation::get_Service3},
    {service::Context, operation::get_PresentationService},
    {service::Context, operation::get_DataStore},
    {service::Context, operation::get_ThreadService},
    {service::Context, operation::get_ParameterService},

    {service::DataStore, operation::GetValue, {argument::name, argument::value}},
    {service::DataStore, operation::SetValue, {argument::name, argument::value}},
    {service::CommandRunner, operation::RunCommand, {argument::commandId}},
    {service::CommandRunner, operation::RunCommandFromThread, {argument::commandId}},
    {service::ProcedureController, operation::SetTransition, {argument::transitionId}},
    {service::PresentationService, operation::ShowInstruction, {argument::text}},
    {service::ComponentService,
     operation::SetComponentProperty,
     {argument::componentId, argument::name, argument::value}},
    {service::Controller, operation::TerminateCommand, {argument::commandId}},
    {service::Controller, operation::PersistentCommandStopped, {argument::commandId}},
    {service::ThreadService, operation::RegisterCallback, {argument::threadName, argument::cookie}},
    {service::ThreadService, operation::UnregisterCallback, {argument::cookie}},
    {service::ThreadService, operation::Operation11, {argument::cookie}},
    {service::ThreadService, operation::Operation12, {argument::cookie}},
    {service::ConditionSet,
     operation::Evaluate,
     {argument::name, argument::failed, argument::parameter, argument::data, argument::limits,
      argument::value, argument::met, argument::allMet}},
    {service::ConditionSet, operation::GetFailureKey, {argument::name, argument::key}},

    {service::ParameterService, operation::GetConnection},
    {service::ParameterService, operation::GetParameter, {argument::id, argument::kind}},
    {service::ParameterService, operation::SetParameter, {argument::id, argument::kind, argument::value}},
    {service::Connection, operation::get_ConnectionIdentifier, {argument::value}},
    {service::Parameter, operation::get_Name, {argument::id, argument::value}},
    {service::Parameter, operation::get_Text, {argument::id, argument::value}},
    {service::Parameter, operation::get_Value, {argument::id, argument::value}},
    {service::Parameter, operation::get_UnitsKey, {argument::id, argument::value}},
    {service::FaultArray, operation::get_Records},
    {service::FaultRecordList, operation::get_Count, {argument::count}},
    {service::FaultRecordList, operation::get_Item, {argument::index}},
    {service::FaultRecord, operation::get_Count, {argument::count}},
    {service::FaultRecord, operation::get_Item, {argument::index}},
    {service::FaultField, operation::get_Name, {argument::value}},
    {service::FaultField, operation::get_Value, {argument::value}},
    {service::ECMServices, operation::GetUnits},
    {service::UnitsTable, operation::GetUnit, {argument::unitsKey}},
    {service::Unit, operation::get_Text, {argument::value}},
    {service::SessionManager, operation::GetDirectory},
    {service::SessionManager, operation::GetProtocolSource},
    {service::Directory, operation::OpenECM, {argument::ecmId}},
    {service::Directory, operation::CloseECM, {argument::handle}},
    {service::Session, operation::Register, {argument::handle}},
    {service::Session, operation::ReadParameter, {argument::id, argument::kind}},
    {service::SessionItem, operation::get_Value, {argument::id, argument::value}},
    {service::ProtocolSource, operation::GetA, {argument::ecmId}},
    {service::ProtocolSourceA, operation::GetB},
    {service::ProtocolSourceB, operation::GetC},
    {service::ProtocolSourceC, operation::GetD},
    {service::ProtocolSourceD, operation::get_Kind, {argument::kind}},
};

} // namespace vant::host
