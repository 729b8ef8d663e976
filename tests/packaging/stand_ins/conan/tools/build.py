def check_min_cppstd(recipe, standard):
    assert standard <= 17, f"{recipe.name} takes C++{standard}"


def can_run(_recipe):
    return True
