# The end-to-end tests that qel.exe runs, too: of each command, and of what Windows does in its own way (files, paths,
# encodings, streams). Left out are those of signals, file modes, limits and memory as other systems have them, and of
# what is the same code everywhere.
function(qel_wine_test name script)
    add_test(NAME ${name} COMMAND python3 "${CMAKE_CURRENT_SOURCE_DIR}/${script}" "${CMAKE_CURRENT_SOURCE_DIR}/qel_under_wine"
        ${ARGN})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600 FIXTURES_REQUIRED wine LABELS windows
        ENVIRONMENT "QEL_WINDOWS_PROGRAM=$<TARGET_FILE:qel>")
endfunction()

qel_wine_test(qel_program qel_program_test.py
    Eval.test_values_of_every_kind_of_selection Eval.test_names Eval.test_standard_input_with_bom_blank_lines_and_failures
    Eval.test_date_order Eval.test_a_relative_path_starts_at_the_current_folder
    Eval.test_a_backslash_stands_between_the_parts_of_a_cube_path ChangedCube.test_reads_can_be_verified
    Mdx.test_table Mdx.test_csv_from_standard_input Mdx.test_names_and_decimals
    Mdx.test_json_has_null_for_an_empty_cell Mdx.test_more_axes_than_two
    Cube.test_build_tells_totals_and_draws_no_bar_into_a_file Cube.test_info Cube.test_members Cube.test_verify
    Cube.test_skipped_lines_are_written_aside_and_told WrongInput)
qel_wine_test(qel_ledger_trial ledger_trial_test.py
    Files.test_skipped_lines_carry_their_number_and_reason Files.test_ledgers_as_they_come
    Files.test_faults_name_their_remedy Files.test_words_and_settings)
qel_wine_test(qel_cube_draft cube_draft_test.py
    Drafts.test_a_hebrew_export_whose_parents_are_not_unique Drafts.test_how_files_are_written)
qel_wine_test(qel_store_commands store_commands_test.py Members Lang)

qel_wine_test(qel_hostile_server ../platform/data/xmla/hostile_server_test.py
    HostileServer.test_a_server_that_answers HostileServer.test_every_failure_is_reported_in_time
    HostileServer.test_a_sheet_over_a_silent_server_does_not_wait_for_every_cell
    HostileServer.test_a_grid_that_is_not_what_was_asked_for_changes_no_value
    HostileServer.test_a_check_of_many_catalogs_asks_for_the_cubes_of_the_first
    HostileServer.test_servers_that_cannot_be_reached HostileServer.test_certificates_are_checked
    HostileServer.test_credentials HostileServer.test_nothing_is_sent_to_a_server_that_the_user_does_not_know
    HostileServer.test_passwords_travel_unencrypted_only_where_the_settings_say_so
    HostileServer.test_redirections_do_not_carry_credentials_elsewhere)

qel_program(console_closer ConsoleCloserMain.cpp)
target_link_options(console_closer PRIVATE -municode)
add_test(NAME qel_windows_program
    COMMAND python3 "${CMAKE_CURRENT_SOURCE_DIR}/windows_program_test.py" "${CMAKE_SOURCE_DIR}/build/native/bin/qel"
        "${CMAKE_CURRENT_SOURCE_DIR}/qel_under_wine")
set_tests_properties(qel_windows_program PROPERTIES TIMEOUT 600 FIXTURES_REQUIRED wine RESOURCE_LOCK wine_prefix
    LABELS windows ENVIRONMENT "QEL_WINDOWS_PROGRAM=$<TARGET_FILE:qel>")
