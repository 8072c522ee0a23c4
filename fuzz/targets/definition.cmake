qel_fuzz(definition targets/definition.cpp qel_engine_build)
