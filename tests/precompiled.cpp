// The one source of the target that owns the precompiled header.
