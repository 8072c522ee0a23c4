qel_fuzz(mdx targets/mdx.cpp qel_engine_build qel_engine_eval)
