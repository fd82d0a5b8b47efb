# The samples of more than half a per cent of copper, as a data frame and as a table of their own.
import ovfile

frame = ovfile.read_pandas("samples/assays.ovt", columns=["BHID", "CU"], where="CU > 0.5")
ovfile.write_pandas(frame, "rich.ovt")
