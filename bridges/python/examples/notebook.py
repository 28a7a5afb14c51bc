# %% [markdown]
# Cells for Jupyter, and a script as it stands: an effect's parameter, and what it does to a ramp.

# %%
import matplotlib.pyplot as plt
import numpy as np

import specialeffects

ramp = np.tile(np.arange(256, dtype=np.uint8), (64, 1))
picture = np.dstack([ramp, ramp[::-1], ramp[:, ::-1]]).copy()

# %%
fx = specialeffects.Effect("sepia")
result = fx(picture.copy(), format="rgb24")
plt.imshow(np.vstack([picture, result]))

# %%
for info in specialeffects.effects():
    print(f"{info.title:20} {', '.join(p.attribute for p in info.properties)}")
