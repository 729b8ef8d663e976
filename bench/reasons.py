"""Why a target is missed: by workload, size and what the figure is compared with, as the report has
them. A reason whose target is met again is to be deleted."""

READ = ("A read hashes both of its names, looks the level up among the known preferences and then the "
        "preference in that level: two lookups that compare two names each. The floor has one name, "
        "which was folded and joined beforehand. Tried: the test of equality inline (10% less, kept), "
        "-O3 for the store (nothing), a hash that is compared before the names (kept).")
TEXT = READ + " A text is made from UTF-8 as well."
REPLACE = ("As for reads; besides, the chain is walked to its end, so that names that a change of the C "
           "locale made equal do not keep an old value: 9 ns.")
READER = ("RapidJSON's reader gets its text cleaned of lone surrogates first, and every number as text; "
          "names are hashed, sorted if need be, and indexed. Tried: RAPIDJSON_SSE42 (slower).")
TIMING = "Not seen in each run: {}. What the disk and the machine do besides shows in this row."
LARGE = ("Of three million preferences each lookup misses the cache for the index, the record and its "
         "category; the floor keeps hash, name and value in one place.")

MISSED = {
    ("first use", "S", "× nlohmann"): TIMING.format("0.43 in the run before"),
    ("first use, CPU", "S", "× nlohmann"): TIMING.format("0.49 in the run before"),
    ("read int", "S", "× floor"): READ,
    ("read int", "M", "× floor"): READ,
    ("read int", "L", "× floor"): READ,
    ("read int", "S", "× best peer"):
        READ + " RapidJSON's document searches the few members of one category without a hash.",
    ("read int, classified", "M", "× floor"): READ,
    ("read int, classified", "L", "× floor"): READ,
    ("read absent", "M", "× floor"):
        "One in six of these names is not ASCII and is encoded in UTF-8 first; the floor's are ready.",
    ("read text", "S", "× floor"): TEXT,
    ("read text", "M", "× floor"): TEXT,
    ("read literal", "M", "× floor"): READ + " The floor makes one text of its literal, a read two.",
    ("replace int", "S", "× floor"): REPLACE,
    ("replace int", "M", "× floor"): REPLACE,
    ("load", "M", "× nlohmann"): READER + " 0.40 in the run before.",
    ("load", "L", "× RapidJSON"): READER,
    ("save", "M", "× RapidJSON"): TIMING.format("0.84 in the run before"),
    ("save", "M", "× best peer but RapidJSON"): TIMING.format("0.76 in the run before"),
    ("save, protected", "S", "× flushed file"):
        "One flush as in the floor, but also the lock file, the other file read and compared, and the "
        "identity of both before and after. Where a flush takes 4 ms, as on the machine measured, "
        "what comes beside it often waits for the next one: single saves take 4 or 8 ms.",
    ("growth, read", "plain, 3,000,000", "× growth of floor"): LARGE,
    ("growth, read", "a category each, 1,000,000", "× growth of floor"): LARGE,
}
