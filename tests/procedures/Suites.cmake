# vant test: test files and folders.

set(suites tests/procedures/suites)

vant_add_run(test_right EXIT 0 ARGUMENTS test ${suites}/right.test.toml OUTPUT)
vant_add_run(test_failing EXIT 1 ARGUMENTS test ${suites}/failing.test.toml --jobs 2 OUTPUT)
vant_add_run(test_answers EXIT 1 ARGUMENTS test ${suites}/answers.test.toml OUTPUT)
# The examples: those whose cases reach everything, and faults in those that take a moment.
set(covered procedures/battery_check.test.toml procedures/fault_check.test.toml procedures/sampling.test.toml)
vant_add_run(test_examples_coverage EXIT 0 ARGUMENTS test ${covered} --coverage --fail-under 100
             MATCHES "\nall +[^\n]* 100%\n$")
vant_add_run(test_examples_faults EXIT 0
             ARGUMENTS test ${covered} procedures/blower_test.test.toml procedures/boost_test.test.toml
                       procedures/display_update.test.toml procedures/load_and_format.test.toml --faults
             MATCHES "\n[0-9]+ runs with faults: 0 survived\n$")
# Mistakes that only faults bring to light.
vant_add_run(test_planted EXIT 0 ARGUMENTS test ${suites}/planted MATCHES "\n4 cases: 4 passed\n$")
vant_add_run(test_planted_faults EXIT 1 ARGUMENTS test ${suites}/planted --faults OUTPUT)
vant_add_run(test_coverage EXIT 0
             ARGUMENTS test ${suites}/answers.test.toml --filter right --coverage --fail-under 50 OUTPUT)
vant_add_run(test_coverage_too_low EXIT 1
             ARGUMENTS test ${suites}/right.test.toml --coverage --fail-under 99.5
             MATCHES "\nthe coverage is less than 99.5 %: [0-9]+ of [0-9]+\n$")
vant_add_run(test_fail_under_alone EXIT 2 ARGUMENTS test --fail-under 50 MATCHES "--fail-under requires --coverage")
vant_add_run(test_wrong EXIT 2 ARGUMENTS test ${suites}/wrong.test.toml ${suites}/right.test.toml ERRORS)
vant_add_run(test_examples EXIT 0 ARGUMENTS test procedures MATCHES "\n89 cases: 89 passed\n$")
vant_add_run(check_tests EXIT 2 ARGUMENTS check ${suites}/wrong.test.toml ${suites}/right.test.toml --json OUTPUT)
vant_add_run(test_folder EXIT 1 ARGUMENTS test ${suites}/without_tests OUTPUT)
vant_add_run(test_filter EXIT 0 ARGUMENTS test ${suites}/right.test.toml ${suites}/failing.test.toml --filter "a=5"
             MATCHES "failing.test.toml: 1 passed\n1 case: 1 passed\n$")
vant_add_run(test_filter_without_match EXIT 2 ARGUMENTS test ${suites}/right.test.toml --filter nothing
             MATCHES "^vant: no case has a name that contains 'nothing'\n$")
vant_add_run(test_nothing EXIT 2 ARGUMENTS test procedures/engines
             MATCHES "^vant: procedures/engines: there are no test files and no procedures in this folder\n$")
vant_add_run(test_missing EXIT 2 ARGUMENTS test missing MATCHES "^vant: missing: .+")
vant_add_run(test_without_module EXIT 3 ARGUMENTS test ${suites} --module missing
             MATCHES "^vant: cannot load the module missing: .+")
# A worker needs longer than that to start.
vant_add_run(test_late EXIT 1 ARGUMENTS test ${suites}/right.test.toml --filter "no time" --case-timeout 1ms OUTPUT)
vant_add_run(test_wrong_timeout EXIT 2 ARGUMENTS test --case-timeout 5 MATCHES "--case-timeout needs a duration.*not '5'")
vant_add_run(test_wrong_jobs EXIT 2 ARGUMENTS test --jobs 0 MATCHES "--jobs")
vant_add_run(help_test EXIT 0 ARGUMENTS test --help MATCHES "--jobs.*--filter.*--json.*--junit.*--coverage.*--fail-under.*--faults.*--fault-repeats.*--update.*--case-timeout.*Exit codes")

if(NOT WIN32)
  add_test(NAME procedures.test_interrupted COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/interrupt_tests $<TARGET_FILE:vant>
                                                    ${PROJECT_SOURCE_DIR}/procedures)
  add_test(NAME procedures.test_reports COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/report_tests $<TARGET_FILE:vant>
                                                ${PROJECT_SOURCE_DIR}/${suites})
  set_tests_properties(procedures.test_interrupted procedures.test_reports PROPERTIES TIMEOUT 60)
endif()
