# The site's settings, which Sphinx reads; make_site.py copies this file beside the pages.
from sphinx.domains.cpp import CPPDomain

project = "vq_client_common"
html_title = "VQ client library"
extensions = ["breathe", "myst_parser"]
root_doc = "index"
# Each header and each example has a page under its own path.
source_suffix = {".md": "markdown", ".rst": "restructuredtext", ".h": "restructuredtext",
                 ".cpp": "restructuredtext"}
breathe_projects = {"library": "../xml"}
breathe_default_project = "library"
breathe_show_include = False
myst_heading_anchors = 4
primary_domain = "cpp"
highlight_language = "none"
smartquotes = False
html_theme = "furo"
# Furo as Debian 12 packages it has no dark colours of its own for a browser that asks for them.
html_theme_options = {"dark_css_variables": {
    "color-foreground-primary": "#d5d7da",
    "color-foreground-secondary": "#9ca2a9",
    "color-foreground-muted": "#868c94",
    "color-foreground-border": "#666",
    "color-background-primary": "#14161a",
    "color-background-secondary": "#1b1e23",
    "color-background-hover": "#23272d",
    "color-background-hover--transparent": "#23272d00",
    "color-background-border": "#32373e",
    "color-background-item": "#444",
    "color-brand-primary": "#6cb0f5",
    "color-brand-content": "#6cb0f5",
    "color-highlighted-background": "#0a3a6b",
    "color-highlight-on-target": "#330",
    "color-problematic": "#f27878",
}}
html_static_path = ["site.css"]
html_css_files = ["site.css"]
html_copy_source = False
html_show_copyright = False
# The search finds functions, and not each of their parameters.
CPPDomain.get_objects = lambda self, everything=CPPDomain.get_objects: (
    entry for entry in everything(self) if entry[2] != "functionParam")
suppress_warnings = ["misc.highlighting_failure"]  # examples between lines of text
