# Procedures that a service engineer would recognise: on a sound engine, on worn ones, and on ones whose control module
# fails. All run in virtual time, so journals are compared with their times.

set(engines procedures/engines)
set(failing_engines tests/procedures/engines)

# Of the long and the failing runs, those lines of the journal that tell what was done and decided.
set(told "\"operation\":\"(StepEntered|CommandEnded|ThreadEnded|TransitionFollowed|ProcedureEnded|RunCommandFromThread|SetTransition|SetParameter|ShowInstruction|TerminateCommand|PersistentCommandStopped)\"")
# The same, and all that the host refused.
set(told_or_refused "${told}|\"result\":\"0x[^0]")

set(service_procedures idle_speed_adjustment sampled_idle_adjustment egr_valve_walk fault_check_and_clear boost_test
                       warm_up_watch)

# vant_add_service_run(NAME PROCEDURE ENGINE ...): a run on ENGINE or, if that is empty, on the procedure's own; the rest
# as of vant_add_run.
function(vant_add_service_run name procedure engine)
  set(on "")
  if(engine)
    set(on --engine ${engine}.toml)
  endif()
  vant_add_run(${name} ARGUMENTS run procedures/${procedure}.toml ${on} --virtual --yes JOURNAL TIMES ${ARGN})
endfunction()

# Unchanged.
vant_add_service_run(idle_speed_adjustment idle_speed_adjustment "" EXIT 0 OUTPUT ONLY "${told_or_refused}")
vant_add_service_run(sampled_idle_adjustment sampled_idle_adjustment "" EXIT 0 OUTPUT)
vant_add_service_run(egr_valve_walk egr_valve_walk "" EXIT 0 OUTPUT)
vant_add_service_run(boost_test boost_test "" EXIT 0 OUTPUT)
if(WIN32)
  # The message is the system's business there, and its text no part of the report.
  vant_add_service_run(fault_check_and_clear fault_check_and_clear "" EXIT 0 MATCHES "passed: step 'good'\n$")
else()
  vant_add_service_run(fault_check_and_clear fault_check_and_clear "" EXIT 0 OUTPUT)
endif()

# The fault is back before the procedure ends.
vant_add_service_run(fault_return_check fault_return_check "" EXIT 1 OUTPUT)

# The engine has a weak cylinder; the other one has none.
vant_add_service_run(cylinder_balance cylinder_balance "" EXIT 1 OUTPUT ONLY "${told_or_refused}")
vant_add_service_run(cylinder_balance_balanced cylinder_balance ${engines}/balanced EXIT 0 OUTPUT
                     ONLY "${told_or_refused}")

# On other engines, worn or broken ones. Each line ends the procedure another way, or for another reason.
function(vant_add_variants procedure exit)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "ONLY" "ENGINES")
  foreach(engine IN LISTS arg_ENGINES)
    get_filename_component(name ${engine} NAME)
    vant_add_service_run(${procedure}_${name} ${procedure} ${engine} EXIT ${exit} OUTPUT ONLY "${arg_ONLY}")
  endforeach()
endfunction()
vant_add_variants(idle_speed_adjustment 1 ONLY "${told_or_refused}"
                  ENGINES ${engines}/weak ${engines}/stalling ${failing_engines}/overspeeding ${failing_engines}/racing)
vant_add_variants(sampled_idle_adjustment 1 ONLY "${told_or_refused}" ENGINES ${engines}/unsteady)
vant_add_variants(egr_valve_walk 1 ONLY "${told_or_refused}"
                  ENGINES ${engines}/egr_sticking ${engines}/sticking_valve)
vant_add_variants(fault_check_and_clear 0 ENGINES ${engines}/idle)
vant_add_variants(boost_test 1 ONLY "${told_or_refused}"
                  ENGINES ${engines}/turbo_leaking ${failing_engines}/wastegate_stuck)
vant_add_variants(warm_up_watch 1 ONLY "${told}"
                  ENGINES ${engines}/overheating ${failing_engines}/hot ${failing_engines}/pump_worn)
vant_add_variants(fault_return_check 0 ENGINES ${failing_engines}/fault_repaired)
vant_add_variants(fault_return_check 1 ENGINES ${engines}/faulty)

# On engines whose control module refuses or cannot read: whatever the steps decide, nothing is known.
vant_add_variants(idle_speed_adjustment 4 ONLY "${told_or_refused}"
                  ENGINES ${failing_engines}/throttle_refused ${failing_engines}/limit_unreadable
                          ${failing_engines}/speed_lost ${failing_engines}/speed_unreadable)
vant_add_variants(sampled_idle_adjustment 4 ENGINES ${engines}/sensor_lost)
vant_add_variants(sampled_idle_adjustment 4 ONLY "${told_or_refused}"
                  ENGINES ${failing_engines}/sampled_throttle_refused ${failing_engines}/status_unreadable
                          ${failing_engines}/speed_unreadable)
vant_add_variants(egr_valve_walk 4 ONLY "${told_or_refused}"
                  ENGINES ${failing_engines}/egr_target_unreadable ${failing_engines}/egr_position_lost
                          ${failing_engines}/egr_position_lost_later ${failing_engines}/egr_refused)
vant_add_variants(fault_check_and_clear 4 ONLY "${told_or_refused}"
                  ENGINES ${failing_engines}/clearing_refused)
# This one has no faults to ask for, of which the check warns.
vant_add_service_run(fault_check_and_clear_egr fault_check_and_clear ${engines}/egr EXIT 4 OUTPUT ERRORS
                     ONLY "${told_or_refused}")
vant_add_variants(boost_test 4 ONLY "${told_or_refused}"
                  ENGINES ${failing_engines}/intake_lost ${failing_engines}/ambient_lost)
# A sensor that is lost for five minutes is refused too often to be listed.
vant_add_variants(warm_up_watch 4 ONLY "${told}" ENGINES ${failing_engines}/temperature_lost)

# Together they use every class of the module: their journals tell.
set(class_names "")
foreach(row IN LISTS VANT_CLASSES)
  string(REGEX REPLACE "[|].*" "" class "${row}")
  list(APPEND class_names ${class})
endforeach()
function(vant_add_class_check name)
  set(journals ${ARGN})
  list(TRANSFORM journals PREPEND ${CMAKE_CURRENT_BINARY_DIR}/)
  list(TRANSFORM journals APPEND .journal)
  add_test(NAME procedures.${name} COMMAND ${CMAKE_COMMAND} "-DCLASSES=${class_names}" "-DJOURNALS=${journals}"
                                           -P ${CMAKE_CURRENT_SOURCE_DIR}/CheckClasses.cmake)
  set_tests_properties(procedures.${name} PROPERTIES FIXTURES_REQUIRED service_procedures)
endfunction()
set(service_tests ${service_procedures})
list(TRANSFORM service_tests PREPEND procedures.)
set_tests_properties(${service_tests} PROPERTIES FIXTURES_SETUP service_procedures)
vant_add_class_check(every_class ${service_procedures})
# Without one of them the check must name what is missing.
set(all_but_faults ${service_procedures})
list(REMOVE_ITEM all_but_faults fault_check_and_clear)
vant_add_class_check(missing_classes ${all_but_faults})
set_tests_properties(procedures.missing_classes PROPERTIES PASS_REGULAR_EXPRESSION
  "never executed: MessageDisplayer ErrorDisplayer HelpDisplayer FaultArrayChecker\n")

# Another engine than the procedure's.
vant_add_run(other_engine_missing EXIT 2
             ARGUMENTS run procedures/egr_valve_walk.toml --engine ${engines}/missing.toml ERRORS)
vant_add_run(other_engine_wrong EXIT 2
             ARGUMENTS run procedures/egr_valve_walk.toml --engine ${cases}/wrong_engine.toml ERRORS)
vant_add_run(other_engine_unfit EXIT 2
             ARGUMENTS run procedures/idle_speed_adjustment.toml --engine ${engines}/egr.toml ERRORS)
vant_add_run(other_engine_for_missing EXIT 0
             ARGUMENTS run ${cases}/engine_missing.toml --engine ${engines}/idle.toml OUTPUT)
vant_add_run(other_engine_inline EXIT 4
             ARGUMENTS run procedures/load_and_format.toml --engine ${engines}/egr.toml OUTPUT ERRORS)
vant_add_run(journal_over_other_engine EXIT 2
             ARGUMENTS run procedures/fault_check.toml --engine ${engines}/faulty.toml
                       --journal ${engines}/faulty.toml ERRORS)
