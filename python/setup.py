"""What pyproject.toml cannot say: a wheel that carries a library is for one system, and any Python 3."""

import os

from setuptools import Distribution, setup

arguments = {}
if os.path.isdir(os.path.join("ovfile", "lib")):
    from wheel.bdist_wheel import bdist_wheel

    class WithLibrary(Distribution):
        def has_ext_modules(self):
            return True

    class SystemWheel(bdist_wheel):
        def get_tag(self):
            return "py3", "none", super().get_tag()[2]

    arguments = {"distclass": WithLibrary, "cmdclass": {"bdist_wheel": SystemWheel}}
setup(**arguments)
