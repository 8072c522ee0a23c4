qel_fuzz(formula targets/formula.cpp qel_cli_formula)
