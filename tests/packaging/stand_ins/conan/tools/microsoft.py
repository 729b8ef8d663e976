def is_msvc(recipe):
    return recipe.settings.compiler == "msvc"
