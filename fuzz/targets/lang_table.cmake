qel_fuzz(lang_table targets/lang_table.cpp qel_lang qel_platform_xml)
