"""Why a target is missed: by workload, size and what the figure is compared with, as the report has
them. A reason whose target is met again is to be deleted."""

MISSED = {
}
