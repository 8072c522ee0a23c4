qel_fuzz(ini targets/ini.cpp qel_platform_files)
