"""Writing generated homes for the scan benchmarks: small files spread over folder trees, and
projects with node_modules that can be aged to look idle. File contents are a few KB of zeros."""
import os
import random
import time

OLD = time.time() - 400 * 86400
BLOCK = b"\0" * 16384


class TreeWriter:
    def __init__(self, seed):
        self.rng = random.Random(seed)
        self.count = 0

    def files(self, folder, n, depth=2, fanout=8):
        """n files spread over a tree of `depth` levels below folder."""
        for i in range(n):
            parts = [folder] + ["d%d" % self.rng.randrange(fanout) for _ in range(depth)]
            d = os.path.join(*parts)
            os.makedirs(d, exist_ok=True)
            with open(os.path.join(d, "f%d" % i), "wb") as f:
                f.write(BLOCK[: self.rng.choice((512, 2048, 4096, 8192, 16384))])
            self.count += 1

    def project(self, root, name, modules, idle):
        """A project with `modules` files in node_modules; an idle one is dated 400 days back."""
        p = os.path.join(root, name)
        self.files(os.path.join(p, "node_modules"), modules, depth=3, fanout=10)
        self.files(os.path.join(p, "src"), 150, depth=2, fanout=4)
        with open(os.path.join(p, "package.json"), "w") as f:
            f.write("{}")
        if idle:
            for dirpath, dirnames, filenames in os.walk(p, topdown=False):
                for n in filenames + dirnames:
                    os.utime(os.path.join(dirpath, n), (OLD, OLD), follow_symlinks=False)
