# vant new, and the texts that the program prints about itself.

foreach(kind IN ITEMS procedure engine test)
  add_test(NAME procedures.new_${kind}
           COMMAND ${CMAKE_COMMAND} "-DVANT=$<TARGET_FILE:vant>" "-DEMULATOR=${emulator}" "-DKIND=${kind}"
                   "-DNAME=Größe 1" "-DSCRATCH=${CMAKE_CURRENT_BINARY_DIR}" -P ${CMAKE_CURRENT_SOURCE_DIR}/CheckNew.cmake)
  set_tests_properties(procedures.new_${kind} PROPERTIES TIMEOUT 120)
endforeach()

# Names and places that do not work. Nothing is written, so the project's folder stays as it is.
vant_add_run(new_missing_folder EXIT 2 ARGUMENTS new engine ${cases}/missing/x
             MATCHES "^vant: tests/procedures/cases/missing/x.toml: there is no folder 'tests/procedures/cases/missing'\n$")
vant_add_run(new_in_file EXIT 2 ARGUMENTS new engine ${cases}/message.toml/x MATCHES "there is no folder '.*message.toml'\n$")
vant_add_run(new_without_name EXIT 2 ARGUMENTS new test MATCHES "^NAME is required")
vant_add_run(new_dots EXIT 2 ARGUMENTS new procedure ${cases}/..
             MATCHES "^vant: '.*' cannot be the name of a new file: it needs a character other than spaces and dots\n$")
vant_add_run(new_ending_alone EXIT 2 ARGUMENTS new test .test.toml MATCHES "other than spaces and dots\n$")
vant_add_run(new_folder_alone EXIT 2 ARGUMENTS new procedure ${cases}/ MATCHES "other than spaces and dots\n$")
vant_add_run(new_colon EXIT 2 ARGUMENTS new procedure ${cases}/a:b MATCHES "' cannot be the name .* are not allowed\n$")
vant_add_run(new_quote EXIT 2 ARGUMENTS new engine "a\"b" MATCHES "^vant: 'a\"b' cannot be the name .* are not allowed\n$")
vant_add_run(new_control_character EXIT 2 ARGUMENTS new engine "a\tb" MATCHES "^vant: 'a.tb' .* are not allowed\n$")
vant_add_run(new_like_option EXIT 2 ARGUMENTS new engine -- -x MATCHES "it begins like an option\n$")
vant_add_run(new_procedure_like_test EXIT 2 ARGUMENTS new procedure x.test.toml
             MATCHES "'.test.toml' is the ending of test files; see 'vant new test'\n$")
string(REPEAT "long" 100 long)
vant_add_run(new_long_name EXIT 2 ARGUMENTS new engine ${long} MATCHES "^vant: (long)+.toml: cannot write the file: .+\n$")
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/folder.toml)
vant_add_run(new_over_folder EXIT 2 ARGUMENTS new engine ${CMAKE_CURRENT_BINARY_DIR}/folder --force
             MATCHES "folder.toml: cannot write the file: .+\n$")
add_test(NAME procedures.new_empty_name COMMAND vant new procedure "")
set_tests_properties(procedures.new_empty_name PROPERTIES TIMEOUT 60 PASS_REGULAR_EXPRESSION "^NAME: must not be empty")
vant_add_run(new_nothing EXIT 2 ARGUMENTS new MATCHES "^A subcommand of new is required")
vant_add_run(new_unknown EXIT 2 ARGUMENTS new procdure MATCHES "not expected: procdure")
vant_add_run(completion_nothing EXIT 2 ARGUMENTS completion MATCHES "^A subcommand of completion is required")
vant_add_run(completion_unknown EXIT 2 ARGUMENTS completion tcsh MATCHES "not expected: tcsh")
vant_add_run(help_new EXIT 0 ARGUMENTS new engine --help MATCHES "NAME.*--force.*Exit codes")

vant_add_run(completion_powershell EXIT 0 ARGUMENTS completion powershell MATCHES "Register-ArgumentCompleter .*'vant run'")
vant_add_run(manual EXIT 0 ARGUMENTS manual MATCHES "^.TH VANT 1 .*\n.SH SEE ALSO\n")

if(NOT WIN32)
  # What cannot be written completely.
  file(CREATE_LINK /dev/full ${CMAKE_CURRENT_BINARY_DIR}/full.toml SYMBOLIC)
  vant_add_run(new_on_full_device EXIT 3 ARGUMENTS new engine ${CMAKE_CURRENT_BINARY_DIR}/full --force
               MATCHES "full.toml: the file could not be written completely\n$")
  vant_add_run(new_over_link EXIT 2 ARGUMENTS new engine ${CMAKE_CURRENT_BINARY_DIR}/full MATCHES "the file exists")
  vant_add_run(new_in_system_folder EXIT 2 ARGUMENTS new engine /proc/x MATCHES "^vant: /proc/x.toml: cannot write the file: ")
  # Skipped if the shell or the formatter is not installed; the project does not demand them.
  foreach(shell IN ITEMS bash fish zsh)
    add_test(NAME procedures.completion_${shell} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/completion $<TARGET_FILE:vant> ${shell})
  endforeach()
  add_test(NAME procedures.manual_rendered COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/manual $<TARGET_FILE:vant>)
  set_tests_properties(procedures.completion_bash procedures.completion_fish procedures.completion_zsh
                       procedures.manual_rendered PROPERTIES TIMEOUT 120 SKIP_RETURN_CODE 77)
endif()
