/* Identifiers of the gallery's resources, a hundred for each family of pages. */
#ifndef GALLERY_RESOURCES_H
#define GALLERY_RESOURCES_H

/* imaging: from 400; controls: from 700; dialogs: from 800 */

#endif
