qel_fuzz(cube_file targets/cube_file.cpp qel_engine_eval)
