import sys

from corvex._cli import main

sys.exit(main())
