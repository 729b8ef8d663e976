"""Runs gdb_values within GDB and prints its values as GDB shows them."""

import gdb

gdb.execute("set disable-randomization off")  # containers refuse it
gdb.execute("set width 0")
stop = gdb.Breakpoint("Stop", internal=True)  # not announced, with an address
stop.silent = True
gdb.execute("run", to_string=True)
gdb.execute("up-silently")

for symbol in gdb.selected_frame().block():
    if symbol.is_variable:
        shown = gdb.execute(f"output {symbol.name}", to_string=True)
        print(f"{symbol.name} = {shown}")
gdb.execute("kill", to_string=True)
