import signal
import sys

from corvex._cli import main

# As the corvex tool does: end at once on Ctrl-C, and quietly when the reader of the output
# goes away.
signal.signal(signal.SIGINT, signal.SIG_DFL)
signal.signal(signal.SIGPIPE, signal.SIG_DFL)
sys.exit(main())
