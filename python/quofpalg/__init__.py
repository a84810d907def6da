"""Image-processing algorithms for a fingerprint sensor: the shared library libquoFPAlg, with NumPy arrays.

Functions carry the names that they have in the C header, which describes every one in full. What is different here:

- A gray image is a uint8 array of shape (height, width). Its size is not passed, and outputs are returned.
- Inputs with gaps between elements are copied first. A function that works in place in C works on a copy, or in
  ``out``: ``out=image`` changes the image itself.
- Wrong types raise TypeError, wrong shapes and ranges ValueError, naming the argument. A result code other than success
  raises a QuoError with ``.code``; each meaning has a class of its own.
- Buffers that the library hands out are moved into arrays and released.

Left out are the four hooks, which take effect where a program or a preloaded library defines them and cannot be defined
by a Python function, and FP_DeleteSpTemplates, which has nothing left to release.

Calls release the interpreter's lock, so threads run side by side. No two calls may share an array that one of them
writes.
"""

from ._library import VERSION as VERSION
from .calibration import *
from .defect import *
from .errors import *
from .frame import *
from .preproc import *
from .quality import *
from .signal import *
from .sptemplate import *
from .toolbox import *
