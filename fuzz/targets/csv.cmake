qel_fuzz(csv targets/csv.cpp qel_engine_build)
