"""What the sample models are made with; see ../make_samples.py."""
