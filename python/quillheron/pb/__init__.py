"""The settings schema compiled for Python (protoc --python_out at build time).

Modules are named after the schema files: ``routeconfiguration_pb2``
(``RouteConfiguration``), ``listeningmodel_pb2`` (``listeningModel``),
``heron_v1_1_pb2`` (``HeronSettings``) and so on; they import each other
package-relatively, so nothing of the schema is a top-level module.
"""
